// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

import assert from 'node:assert/strict';
import { copyFile, mkdtemp, rm, writeFile } from 'node:fs/promises';
import { tmpdir } from 'node:os';
import { join } from 'node:path';
import { after, before, describe, test } from 'node:test';
import {
  Viewer, assertAccessible, assertDrawn, assertFitsWindows, cameraOf, closeBrowser, drawn, freeEdges, isSameColour, look, openBrowser, pixels,
  shows, street, takePicture,
} from './support.js';

before(openBrowser);
after(closeBrowser);

describe('a recording', () => {
  let viewer;
  let page;
  let complaints;

  const frameAt = async (index) => (await viewer.json(`frames.json?first=${index}&count=1`))[0];
  const scrubTo = async (index) => {
    await page.locator('#scrubber').fill(`${index}`);
    await shows(page, index);
  };

  before(async () => {
    viewer = await Viewer.start('--recording', street);
    ({ page, complaints } = await look(viewer));
  });
  after(() => viewer.stop());

  test('is drawn frame by frame where the scrubber stands', async () => {
    for (const index of [0, 99, 100, 300, 794]) {
      await scrubTo(index);
      const picture = await drawn(page, 1);
      const frame = await frameAt(index);
      assert.equal(picture.timestamp, frame.timestamp);
      assertDrawn(picture, frame);
      await page.locator('#position', { hasText: `frame ${index + 1} of 795` }).waitFor();
    }
  });

  test('has boxes where the frames say, in the colours of their rows', async () => {
    let checked = 0;
    for (const index of [20, 150, 300, 450, 600]) {
      await scrubTo(index);
      const edges = freeEdges(await drawn(page, 1));
      const colours = await pixels(page, 1, edges.map(({ place }) => place));
      colours.forEach((colour, at) => assert.ok(isSameColour(colour, edges[at].colour), `${colour} in frame ${index}`));
      checked += edges.length;
    }
    assert.ok(checked >= 5, `only ${checked} edges stand free`);
  });

  test('lists the events that were, the latest first', async () => {
    const { eventList } = await viewer.json('recording.json');
    const past = eventList.filter(({ frame }) => frame <= 300).slice(-5).reverse();
    await scrubTo(300);
    const texts = await page.locator('.events li').allTextContents();
    assert.deepEqual(texts.map((text) => text.replace(/^\d+ s /, '')), past.map(({ action, objectId, objectIds }) =>
      (action === 'Delete' ? `human ${objectId} left` : `human ${objectId} is human ${objectIds.join(', human ')} again`)));
  });

  test('is stepped through with the keyboard', async () => {
    await scrubTo(300);
    await page.locator('#scrubber').press('ArrowRight');
    await shows(page, 301);
    await page.locator('#scrubber').blur();
    for (const [key, index] of [['ArrowLeft', 300], ['Shift+ArrowRight', 310], ['Home', 0], ['ArrowLeft', 0], ['End', 794]]) {
      await page.keyboard.press(key);
      await shows(page, index);
    }
  });

  test('goes where the timeline is pointed at', async () => {
    const timeline = page.locator('.seekable canvas');
    const { width } = await timeline.boundingBox();
    await timeline.click({ position: { x: width / 2, y: 10 } });
    await page.locator('#position', { hasText: /· 40 s of 1:19/ }).waitFor();
  });

  test('plays and pauses with the space key', async () => {
    await scrubTo(500);
    await page.locator('#scrubber').blur();
    await page.keyboard.press('Space');
    await page.locator('.pill', { hasText: 'playing' }).waitFor();
    await page.waitForFunction(() => Number(document.querySelector('.camera').dataset.frame) > 505);
    await page.keyboard.press('Space');
    await page.locator('.pill', { hasText: 'paused' }).waitFor();
    const index = Number(await page.locator('#scrubber').inputValue());
    await shows(page, index);
    assertDrawn(await drawn(page, 1), await frameAt(index));
  });

  test('ends at its end, and plays again from its start', async () => {
    await page.locator('#speed').selectOption('8');
    await scrubTo(780);
    await page.locator('#pause').click();
    await page.locator('.pill', { hasText: 'paused' }).waitFor();
    await shows(page, 794);
    await page.locator('#pause').click();
    await page.waitForFunction(() => Number(document.querySelector('.camera').dataset.frame) < 700);
    await page.locator('#pause').click();
  });

  test('fits into wide and narrow windows, light and dark', async () => {
    await scrubTo(300);
    await assertFitsWindows(page, 'recording');
  });

  test('is stepped through from event to event', async () => {
    const { eventList } = await viewer.json('recording.json');
    await scrubTo(300);
    await page.locator('#scrubber').blur();
    await page.keyboard.press('n');
    await shows(page, eventList.find(({ frame }) => frame > 300).frame);
    await page.keyboard.press('p');
    await shows(page, eventList.findLast(({ frame }) => frame < eventList.find((each) => each.frame > 300).frame).frame);
  });

  test('has labels that cover neither each other nor the boxes of others', async () => {
    for (const index of [150, 300, 450, 600]) {
      await scrubTo(index);
      const picture = await drawn(page, 1);
      const labels = await page.evaluate(async ({ rows, width, height }) => {
        const { placeLabels } = await import('./labels.js');
        const context = document.createElement('canvas').getContext('2d');
        const objects = rows.map(({ cells, box: [x, y, w, h] }) => ({
          detection: { objectId: Number(cells[0].split(' ').pop()), className: 'human', attributes: [] },
          area: { x, y, width: w, height: h },
          isMarked: false,
        }));
        return placeLabels(context, objects, { width, height }).map(({ object, at }) => ({ id: object.detection.objectId, at }));
      }, picture);
      assert.ok(labels.length > 0);
      const cover = (a, b) => a.x < b.x + b.width && b.x < a.x + a.width && a.y < b.y + b.height && b.y < a.y + a.height;
      labels.forEach(({ id, at }, place) => {
        assert.ok(!labels.slice(place + 1).some((other) => cover(at, other.at)), `a label covers another in frame ${index}`);
        assert.ok(!picture.rows.some(({ cells, box: [x, y, width, height] }) =>
          cells[0] !== `human ${id}` && cover(at, { x, y, width, height })), `a label covers a box in frame ${index}`);
      });
    }
  });

  test('is at the same moment again, with the same object, when its address is opened', async () => {
    await scrubTo(300);
    await page.locator('tr[data-object-id="18"] button').click();
    const { page: other } = await look(viewer, { address: new URL(page.url()).hash });
    await shows(other, 300);
    await other.locator('tr[data-object-id="18"].marked').first().waitFor();
    await other.close();
    await page.keyboard.press('Escape');
  });

  test('shows only objects of a score, and with an attribute', async () => {
    await scrubTo(300);
    const { detections } = await frameAt(300);
    await page.locator('#more summary').click();
    await page.locator('#score').fill('95');
    assert.equal((await drawn(page, 1)).rows.length, detections.filter(({ score }) => score >= 95).length);
    await page.locator('#score').fill('');
    await page.locator('#attribute').fill('lower clothing blue');
    const isBlue = ({ attributes }) =>
      attributes.some(({ typeName, className }) => typeName === 'lower_clothing_colour' && className === 'blue');
    assert.equal((await drawn(page, 1)).rows.length, detections.filter(isBlue).length);
    await page.locator('#attribute').fill('');
    await page.locator('#more summary').click();
  });

  test('lists its keys', async () => {
    await page.locator('h1').click();
    await page.keyboard.press('?');
    await page.getByText('previous or next event').waitFor();
    await page.keyboard.press('Escape');
  });

  test('has nothing that axe-core objects to', () => assertAccessible(page));

  test('makes the page complain of nothing', () => assert.deepEqual(complaints, []));
});

test('a recording has tails that fade: fresh where an object was just now, gone where it was long ago', async () => {
  const folder = await mkdtemp(join(tmpdir(), 'tarnvod-view-'));
  for (const file of ['detector-information.pb', 'scenes.pb']) {
    await copyFile(join(street, file), join(folder, file)); // without its background
  }
  const viewer = await Viewer.start('--recording', folder);
  const { page } = await look(viewer, { address: '#frame=300' });
  await shows(page, 300);
  const { width, height, rows } = await drawn(page, 1);
  const [ground] = await pixels(page, 1, [[3, height - 3]]);
  const footOf = async (index, objectId) => {
    const { coord1, coord3, coord4 } = (await viewer.json(`frames.json?first=${index}&count=1`))[0].detections.find((each) => each.objectId === objectId);
    return [((coord1 + coord3) / 2) * width, coord4 * height];
  };
  const { colour } = rows.find(({ cells }) => cells[0] === 'human 18');
  const distance = (one) => one.reduce((sum, part, index) => sum + Math.abs(part - ground[index]), 0);
  const places = await Promise.all([294, 280, 260].map((index) => footOf(index, 18)));
  const [fresh, faint, gone] = (await pixels(page, 1, places)).map(distance);
  assert.ok(fresh > faint && faint > 10, `${fresh}, ${faint}`);
  assert.ok(gone < 10, `${gone}`);
  assert.ok(fresh < distance(colour) + 30);
  await viewer.stop();
  await rm(folder, { recursive: true });
});

test('boxes of width and height in pixels are drawn as such', async () => {
  const viewer = await Viewer.start('--recording', street, '--box', 'size', '--range', '0,0,2,1');
  const { page } = await look(viewer);
  const { width, height, rows } = await drawn(page, 1);
  const [{ detections }] = await viewer.json('frames.json?first=0&count=1');
  assert.ok(Math.abs(width / height - 2) < 0.02);
  const { coord1, coord2, coord3, coord4 } = detections.find(({ objectId }) => objectId === 1);
  const expected = [(coord1 / 2) * width, coord2 * height, (coord3 / 2) * width, coord4 * height];
  rows[0].box.forEach((number, place) => assert.ok(Math.abs(number - expected[place]) < 0.02));
  await viewer.stop();
});

test('a recording without frames, and one that is damaged, each get a sentence', async () => {
  const folder = await mkdtemp(join(tmpdir(), 'tarnvod-view-'));
  await copyFile(join(street, 'detector-information.pb'), join(folder, 'detector-information.pb'));
  for (const [bytes, sentence] of [['', /holds no frames/], ['\xff\xff', /is damaged: .*scenes\.pb: offset 0: /]]) {
    await writeFile(join(folder, 'scenes.pb'), bytes, 'latin1');
    const viewer = await Viewer.start('--recording', folder);
    const { page, complaints } = await look(viewer, { shown: null });
    await page.locator('#notice', { hasText: sentence }).waitFor();
    await page.getByText('Nothing to show').waitFor();
    assert.deepEqual(complaints, []);
    await viewer.stop();
  }
  await rm(folder, { recursive: true });
});
