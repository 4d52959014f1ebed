// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

import assert from 'node:assert/strict';
import { after, before, describe, test } from 'node:test';
import {
  Viewer, assertDrawn, cameraOf, closeBrowser, drawn, look, lookAtTwoCameras, openBrowser, shownAfter, street, takePicture,
} from './support.js';

before(openBrowser);
after(closeBrowser);

describe('the live view', () => {
  let viewer;
  let sent;
  let page;
  let complaints;

  let stop;

  before(async () => {
    ({ viewer, sent, page, complaints, stop } = await lookAtTwoCameras());
    await page.waitForFunction(() => Number(document.querySelector('#scrubber').min) < -4);
  });
  after(() => stop());

  test('shows a moment of the past where the scrubber stands, of all cameras', async () => {
    await page.locator('#pause').click();
    const now = await drawn(page, 1);
    await page.locator('#scrubber').fill('-2');
    await shownAfter(page, 1, now.timestamp);
    for (const camera of [1, 2]) {
      const picture = await drawn(page, camera);
      assertDrawn(picture, sent.frames.get(`${camera} ${picture.timestamp}`));
    }
    const back = (now.timestamp - (await drawn(page, 1)).timestamp) / 1e6;
    assert.ok(back > 1 && back < 3, `${back} s back`);
    assert.match(await page.locator('#position').textContent(), /, \d+ s ago$/);
    await takePicture(page, 'scrubbed-1280');
  });

  test('goes frame by frame through the past', async () => {
    const here = (await drawn(page, 2)).timestamp;
    await page.locator('#forward').click();
    await page.locator('#forward').click();
    const further = await shownAfter(page, 2, here);
    assert.ok(further > here && further <= here + 200_000, `from ${here} to ${further}`);
    await page.locator('#back').click();
    await page.locator('#back').click();
    await page.waitForFunction((timestamp) =>
      document.querySelector('.camera[data-camera="2"]').dataset.timestamp === timestamp, `${here}`);
  });

  test('goes to where its timeline is pointed at', async () => {
    const timeline = cameraOf(page, 1).locator('.seekable canvas');
    const { width } = await timeline.boundingBox();
    const shown = (await drawn(page, 1)).timestamp;
    await timeline.click({ position: { x: width * (1 - 1 / 60), y: 10 } });
    assert.ok(await shownAfter(page, 1, shown) > shown);
    await page.keyboard.press('Escape');
  });

  test('opens at the same moment when its address is opened, with the frames from there on', async () => {
    await page.locator('#scrubber').fill('-2');
    const shown = (await drawn(page, 1)).timestamp;
    assert.match(page.url(), /[#&]at=\d+/);
    const { page: linked, complaints: others } = await look(viewer, { address: new URL(page.url()).hash });
    await linked.getByRole('button', { name: 'Resume' }).waitFor();
    assert.equal((await drawn(linked, 1)).timestamp, shown);
    await linked.locator('#forward').click();
    assert.ok(await shownAfter(linked, 1, shown) > shown);
    assert.deepEqual(others, []);
    await linked.close();
  });

  test('says so when the moment of its address is not kept, and shows what is now', async () => {
    const { page: linked, complaints: others } = await look(viewer, { address: '#at=1' });
    await linked.locator('#notice', { hasText: 'has been dropped; this is the live view' }).waitFor();
    const shown = (await drawn(linked, 1)).timestamp;
    assert.ok(await shownAfter(linked, 1, shown) !== shown);
    assert.ok(await linked.locator('#notice').isVisible());
    assert.ok(!linked.url().includes('at='));
    assert.deepEqual(others, []);
    await linked.close();
  });

  test('returns to now', async () => {
    await page.locator('#pause').click();
    assert.equal(await page.locator('#pause').textContent(), 'Pause');
    await page.locator('#position', { hasText: /, live$/ }).waitFor();
    const shown = (await drawn(page, 1)).timestamp;
    assert.ok(await shownAfter(page, 1, shown) !== shown);
  });

  test('keeps its past within bounds, however much arrives', async () => {
    const { count, oldest } = await page.evaluate(async () => {
      const { KeptFrames } = await import('./kept_frames.js');
      const kept = new KeptFrames(10_000, 300);
      for (let at = 0; at < 1000; at += 1) {
        kept.add(JSON.stringify({ at, filler: 'x'.repeat(80) }), at / 100);
      }
      return { count: kept.times.length, oldest: kept.at(kept.times[0]).at };
    });
    assert.ok(count > 90 && count < 110, `${count} frames`);
    assert.equal(oldest, 1000 - count);
  });

  test('complains of nothing', () => assert.deepEqual(complaints, []));
});

test('one of two cameras is shown alone when its title is pressed, also by a link, and both again after Escape', async () => {
  const viewer = await Viewer.start('--camera', '1', '2');
  const { page } = await look(viewer);
  await cameraOf(page, 2).getByRole('button', { name: 'Camera 2', exact: true }).click();
  assert.ok(!await cameraOf(page, 1).isVisible());
  const { page: linked } = await look(viewer, { address: new URL(page.url()).hash, shown: 2 });
  assert.ok(!await cameraOf(linked, 1).isVisible());
  await linked.close();
  await page.keyboard.press('Escape');
  assert.ok(await cameraOf(page, 1).isVisible());
  await viewer.stop();
});

test('sixteen cameras form a wall that fits into the window', async () => {
  const numbers = Array.from({ length: 16 }, (_, place) => `${place + 1}`);
  const viewer = await Viewer.startWith(numbers.map(() => street).join(':'), '0', '--camera', ...numbers);
  const { page } = await look(viewer, { width: 1440, height: 900 });
  await page.waitForFunction(() => document.querySelectorAll('.camera[data-pictures]').length === 16);
  const bottoms = await page.locator('.camera').evaluateAll((sections) =>
    sections.map((section) => section.getBoundingClientRect().bottom));
  const player = await page.locator('#player').boundingBox();
  assert.ok(Math.max(...bottoms) <= player.y + 1, `${Math.max(...bottoms)} is below ${player.y}`);
  await takePicture(page, 'wall-1440', false);
  await viewer.stop();
});

test('two recordings are shown in step', async () => {
  const viewer = await Viewer.start('--recording', street, `${street}-mirrored`);
  const { page } = await look(viewer);
  await page.locator('#scrubber').fill('200');
  for (const camera of [1, 2]) {
    await page.waitForSelector(`.camera[data-camera="${camera}"][data-frame="200"]`);
    const [frame] = await viewer.json(`frames.json?recording=${camera}&first=200&count=1`);
    assertDrawn(await drawn(page, camera), frame);
  }
  await page.locator('#scrubber').fill('700');
  await page.waitForSelector('.camera[data-camera="2"][data-frame="399"]');
  await takePicture(page, 'two-recordings-1280', false);
  await viewer.stop();
});
