// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

import assert from 'node:assert/strict';
import { after, before, describe, test } from 'node:test';
import {
  Viewer, assertAccessible, assertDrawn, assertFitsWindows, cameraOf, closeBrowser, drawn, freeEdges, isSameColour, look, lookAtTwoCameras,
  openBrowser, pauseWhen, pixels, takePicture,
} from './support.js';

before(openBrowser);
after(closeBrowser);

describe('two cameras that are seen live', () => {
  let viewer;
  let sent;
  let page;
  let complaints;

  let stop;

  before(async () => { ({ viewer, sent, page, complaints, stop } = await lookAtTwoCameras()); });
  after(() => stop());

  test('are drawn as their frames were sent', async () => {
    await pauseWhen(page, 1, (picture) => freeEdges(picture).length > 0);
    for (const camera of [1, 2]) {
      const picture = await drawn(page, camera);
      assertDrawn(picture, sent.frames.get(`${camera} ${picture.timestamp}`));
    }
    await page.locator('#pause').click();
  });

  test('have boxes where the frames say, in the colours of their rows', async () => {
    const picture = await pauseWhen(page, 1, (each) => freeEdges(each).length > 0);
    const edges = freeEdges(picture);
    const colours = await pixels(page, 1, edges.map(({ place }) => place));
    colours.forEach((colour, index) => assert.ok(isSameColour(colour, edges[index].colour), `${colour} is not drawn`));
    await page.locator('#pause').click();
  });

  test('stay as they are while paused, and go on after', async () => {
    const picture = await pauseWhen(page, 1, () => true);
    await page.getByText(/paused, [1-9]\d* frames? since/).first().waitFor();
    assert.deepEqual(await drawn(page, 1), picture);
    await page.keyboard.press('Escape');
    await page.locator('h1').click();
    await page.keyboard.press('Space');
    await page.waitForFunction((timestamp) =>
      document.querySelector('.camera').dataset.timestamp !== timestamp, `${picture.timestamp}`);
    assert.equal(await page.locator('#pause').textContent(), 'Pause');
  });

  test('show nothing of a class that is filtered out', async () => {
    const picture = await pauseWhen(page, 1, (each) => freeEdges(each).length > 0);
    const [{ place, colour }] = freeEdges(picture);
    await page.getByLabel('human').uncheck();
    assert.equal((await drawn(page, 1)).rows.length, 0);
    assert.ok(!isSameColour((await pixels(page, 1, [place]))[0], colour));
    await page.getByLabel('human').check();
    assert.deepEqual(await drawn(page, 1), picture);
    assert.ok(isSameColour((await pixels(page, 1, [place]))[0], colour));
    await page.locator('#pause').click();
  });

  test('show their frames per second and the age of the last frame', async () => {
    await cameraOf(page, 1).getByText(/^(9|10|11)\.\d frames\/s$/).waitFor();
    await cameraOf(page, 1).getByText(/^last frame 0\.\d s ago$/).waitFor();
  });

  test('have a timeline with a bar for each object, up to now', async () => {
    const objectOf = ({ cells }) => cells[0];
    const earlier = (await pauseWhen(page, 1, ({ rows }) => rows.length > 0)).rows.map(objectOf);
    await page.locator('#pause').click();
    await page.waitForTimeout(1000); // who has only just come has no bar that could be seen
    const picture = await pauseWhen(page, 1, ({ rows }) => rows.some((row) => earlier.includes(objectOf(row))));
    const { width, height } = await cameraOf(page, 1).locator('canvas').nth(1).evaluate((canvas) =>
      ({ width: canvas.clientWidth, height: canvas.clientHeight }));
    // A bar ends with the last frame, which is a few units old when the browser is slow.
    const end = await pixels(page, 1, [2, 6, 10].flatMap((left) =>
      Array.from({ length: Math.floor(height) }, (_, y) => [width - left, y])), 1);
    for (const row of picture.rows.filter((each) => earlier.includes(objectOf(each)))) {
      assert.ok(end.some((each) => isSameColour(each, row.colour)), `${objectOf(row)} has no bar`);
    }
    await page.locator('#pause').click();
  });

  test('fit into wide and narrow windows, light and dark', async () => {
    await assertFitsWindows(page, 'live');
  });

  test('say plainly that their subscriptions are down, and that they are back', async () => {
    const veil = cameraOf(page, 1).locator('.veil');
    assert.ok(!await veil.isVisible());
    viewer.switchService('down');
    await cameraOf(page, 1).locator('.pill', { hasText: 'down' }).waitFor();
    assert.match(await veil.textContent(), /No frames.*the service does not answer; trying again every 1 s/);
    await cameraOf(page, 2).locator('.pill', { hasText: 'down' }).waitFor();
    await takePicture(page, 'down-1280-light');
    viewer.switchService('up');
    await cameraOf(page, 1).locator('.pill', { hasText: 'receiving' }).waitFor();
    await veil.waitFor({ state: 'hidden' });
    await page.locator('#status-changes').getByText(/camera 1: frames are back after \d/).waitFor();
    await takePicture(page, 'back-1280-light');
  });

  test('have nothing that axe-core objects to', () => assertAccessible(page));

  test('mark an object in picture, table and timeline when its row is chosen', async () => {
    const picture = await pauseWhen(page, 1, ({ rows }) => rows.length > 0);
    const row = cameraOf(page, 1).locator('tr[data-object-id]:not(.attributes)').first();
    const [[x, y, width]] = picture.rows.map(({ box }) => box);
    const before = await pixels(page, 1, [[x + width / 2, y + 6]]);
    await row.locator('button').click();
    assert.match(await row.getAttribute('class'), /marked/);
    assert.match(page.url(), /[#&]object=1%3A\d+/);
    assert.notDeepEqual(await pixels(page, 1, [[x + width / 2, y + 6]]), before);
    await page.keyboard.press('Escape');
    await page.mouse.move(0, 0);
    await cameraOf(page, 1).locator('tr.marked').waitFor({ state: 'detached' });
    await page.locator('#pause').click();
  });

  test('show their past to a page that joins later', async () => {
    const joined = await look(viewer);
    await joined.page.waitForFunction(() => [...document.querySelectorAll('.camera[data-camera="1"] td.number')]
      .some((cell) => Number.parseFloat(cell.textContent) > 3 && cell.textContent.endsWith(' s')));
    const { width, height } = await cameraOf(joined.page, 1).locator('canvas').nth(1).evaluate((canvas) =>
      ({ width: canvas.clientWidth, height: canvas.clientHeight }));
    const early = await pixels(joined.page, 1,
      Array.from({ length: Math.floor(height) - 24 }, (_, y) => [Math.floor(width * (1 - 2.5 / 60)), y + 22]), 1);
    assert.ok(new Set(early.map(String)).size > 1, 'the timeline is empty 2.5 seconds ago');
    await joined.page.close();
  });

  test('make the page complain of nothing', () => assert.deepEqual(complaints, []));
});

test('a page whose viewer ends says so, and goes on with the next one at the same port', async () => {
  const first = await Viewer.start('--camera', '1');
  const { page } = await look(first);
  await first.stop();
  await page.locator('#connection', { hasText: 'not connected' }).waitFor();
  await page.getByText('No connection to tarnvod view').waitFor();
  const second = await Viewer.startAt(first.port, '--camera', '1');
  await page.locator('#connection', { hasText: /^connected/ }).waitFor();
  await cameraOf(page, 1).locator('.pill', { hasText: 'receiving' }).waitFor();
  await second.stop();
});

test('a ninth browser gets a sentence, and the picture when another is closed', async () => {
  const viewer = await Viewer.start('--camera', '1');
  const others = Array.from({ length: 8 }, () => viewer.collectFrames());
  await Promise.all(others.map(({ first }) => first));
  const { page } = await look(viewer, { shown: null });
  await page.locator('#notice', { hasText: 'No more than 8 browsers can view at once; close one.' }).waitFor();
  await takePicture(page, 'ninth-1280');
  others.forEach(({ stop }) => stop());
  await cameraOf(page, 1).locator('.pill', { hasText: 'receiving' }).waitFor();
  assert.ok(!await page.locator('#notice').isVisible());
  await viewer.stop();
});

test('a canvas has as many pixels as the screen', async () => {
  const viewer = await Viewer.start('--camera', '1');
  const { page } = await look(viewer, { deviceScaleFactor: 2 });
  const { pixelWidth, pageWidth } = await cameraOf(page, 1).locator('canvas').first().evaluate((canvas) =>
    ({ pixelWidth: canvas.width, pageWidth: canvas.clientWidth }));
  assert.equal(pixelWidth, 2 * pageWidth);
  await viewer.stop();
});
