// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

import assert from 'node:assert/strict';
import { copyFile, mkdtemp, rm, writeFile } from 'node:fs/promises';
import { tmpdir } from 'node:os';
import { join } from 'node:path';
import { after, before, describe, test } from 'node:test';
import { delimited, float, long, number } from './protobuf.js';
import { Viewer, assertAccessible, closeBrowser, isSameColour, look, openBrowser, pixels, shows, street, takePicture } from './support.js';

before(openBrowser);
after(closeBrowser);

const [frames, secondsPerFrame, framesPerObject] = [1800, 2, 5];

/** A human, or one of a class that the detector does not know. */
const detection = (id) => long(2, float(1, 0.4), float(2, 0.4), float(3, 0.5), float(4, 0.6), number(5, id),
  number(6, id % 3 === 0 ? 9 : 1), number(7, 80), number(8, 2));

/** An hour in which three objects are there at a time, twelve in its third quarter; each for ten seconds. */
function scene(frame) {
  const count = Math.floor((4 * frame) / frames) === 2 ? 12 : 3;
  const first = 12 * Math.floor(frame / framesPerObject) + 1;
  return delimited(Buffer.concat([number(1, frame * secondsPerFrame * 1e6),
    ...Array.from({ length: count }, (_, place) => detection(first + place))]));
}

describe('the timeline of an hour', () => {
  let folder;
  let viewer;
  let page;
  let complaints;

  const timelineShows = (kind, on = page) => on.waitForSelector(`.past[data-shows="${kind}"]`);
  const legend = () => page.locator('.legend').textContent();
  /** How many pixels of a column are not the ground. */
  const heightAt = async (share) => {
    const { width, height } = await page.locator('.seekable canvas').boundingBox();
    const column = Array.from({ length: Math.floor(height) - 30 }, (_, y) => [Math.floor(share * width), y + 24]);
    const [ground] = await pixels(page, 1, [[2, 22]], 1);
    return (await pixels(page, 1, column, 1)).filter((colour) => !isSameColour(colour, ground)).length;
  };

  before(async () => {
    folder = await mkdtemp(join(tmpdir(), 'tarnvod-view-'));
    await copyFile(join(street, 'detector-information.pb'), join(folder, 'detector-information.pb'));
    await writeFile(join(folder, 'scenes.pb'), Buffer.concat(Array.from({ length: frames }, (_, frame) => scene(frame))));
    viewer = await Viewer.start('--recording', folder);
    ({ page, complaints } = await look(viewer, { width: 1440, height: 900 }));
    await page.locator('h1').click();
  });
  after(async () => {
    await viewer.stop();
    await rm(folder, { recursive: true });
  });

  test('shows how many objects of each class there were at a time', async () => {
    await timelineShows('density');
    assert.match(await legend(), /^objects at a time, at most 1[0-2](\.\d)?:class 9human/);
    const [few, many] = [await heightAt(0.37), await heightAt(0.63)];
    assert.ok(many > 2 * few && few > 3, `${few} and ${many}`);
    await takePicture(page, 'density-1440', false);
  });

  test('says that there is a class that the detector does not know', async () => {
    await page.locator('#notice', { hasText: 'frame 1 holds class id 9, which the detector information does not name' }).waitFor();
  });

  test('shows each object when it shows less time, which its address keeps', async () => {
    for (let times = 0; times < 6; times += 1) {
      await page.keyboard.press('i');
    }
    await timelineShows('tracks');
    assert.match(await legend(), /seen again/);
    assert.match(page.url(), /[#&]time=0%2C56/);
    await takePicture(page, 'zoomed-timeline-1440', false);
    const { page: linked } = await look(viewer, { address: new URL(page.url()).hash, width: 1440, height: 900 });
    await timelineShows('tracks', linked);
    await linked.close();
  });

  test('goes with the moment that is shown', async () => {
    await page.locator('#scrubber').fill('900');
    await shows(page, 900);
    const [from, to] = decodeURIComponent(/time=([^&]+)/.exec(page.url())[1]).split(',').map(Number);
    assert.ok(from < 1800 && 1800 < to && to - from < 57, `${from} to ${to}`);
  });

  test('is zoomed and moved by its buttons and the wheel, and shows everything again', async () => {
    const spanOf = () => decodeURIComponent(/time=([^&]+)/.exec(page.url())?.[1] ?? '0,3598').split(',').map(Number);
    const [from, to] = spanOf();
    await page.getByRole('button', { name: 'Recording: More time' }).click();
    assert.ok(Math.abs(spanOf()[1] - spanOf()[0] - 2 * (to - from)) < 0.5);
    await page.getByRole('button', { name: 'Recording: Later' }).click();
    assert.ok(spanOf()[0] > from);
    const { x, y, width } = await page.locator('.seekable canvas').boundingBox();
    await page.mouse.move(x + width / 4, y + 40);
    const [left, right] = spanOf();
    await page.keyboard.down('Control');
    await page.mouse.wheel(0, -400);
    await page.keyboard.up('Control');
    await page.waitForFunction((before) => !location.hash.includes(before), encodeURIComponent(`${left},${right}`));
    const fixed = (span) => span[0] + (span[1] - span[0]) / 4;
    assert.ok(Math.abs(fixed(spanOf()) - fixed([left, right])) < 1, 'what is pointed at stays');
    await page.getByRole('button', { name: 'Recording: Reset the time' }).click();
    await timelineShows('density');
    assert.ok(!page.url().includes('time='));
  });

  test('gives the command that cuts out what it shows', async () => {
    await page.locator('#scrubber').fill('0');
    await shows(page, 0);
    await page.locator('h1').click();
    for (let times = 0; times < 3; times += 1) {
      await page.keyboard.press('i');
    }
    await page.locator('#tools summary').click();
    await page.getByRole('button', { name: 'Cut: the command for this time' }).click();
    const line = page.locator('.copy-line input');
    assert.equal(await line.inputValue(), `tarnvod cut ${folder} --from 0.0 --to 449.8 --output part`);
    await page.locator('h1').click();
    await page.keyboard.press('a');
    assert.equal(await line.inputValue(), `tarnvod cut ${folder} --from 0.0 --output part`);
    await page.getByRole('button', { name: 'Remove' }).click();
    assert.ok(!await line.isVisible());
  });

  test('has nothing that axe-core objects to', () => assertAccessible(page));

  test('makes the page complain of nothing', () => assert.deepEqual(complaints, []));
});

test('a density counts each object for as long as it was there', async () => {
  const viewer = await Viewer.start('--recording', street);
  const { page } = await look(viewer);
  const density = await page.evaluate(async () => {
    const { densityOf } = await import('./density.js');
    const tracks = [['a', 0, 30], ['a', 15, 25], ['b', 12, 13], ['a', -10, 5], ['b', 29, 40]]
      .map(([className, first, last]) => ({ className, first, last }));
    return [...densityOf(tracks, { from: 0, to: 30 }, 9)].map(([className, steps]) => [className, [...steps]]);
  });
  const near = (one, other) => one.every((each, place) => Math.abs(each - other[place]) < 1e-9);
  assert.deepEqual(density.map(([className]) => className), ['a', 'b']);
  assert.ok(near(density[0][1], [1.5, 1.5, 1.5]), `${density[0][1]}`);
  assert.ok(near(density[1][1], [0, 0.1, 0.1]), `${density[1][1]}`);
  await viewer.stop();
});
