// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

import assert from 'node:assert/strict';
import { mkdir } from 'node:fs/promises';
import { join } from 'node:path';
import { after, before, test } from 'node:test';
import { Viewer, cameraOf, closeBrowser, look, openBrowser, street } from './support.js';

// The pictures of the manual. PICTURES is the folder that they are written to.
const pictures = process.env.PICTURES;

before(async () => {
  await mkdir(pictures, { recursive: true });
  await openBrowser();
});
after(closeBrowser);

const window = { width: 1440, height: 900 };

test('everything that matters of a recording is in a window of 1440 x 900', async () => {
  const viewer = await Viewer.start('--recording', street);
  const { page } = await look(viewer, { ...window, address: '#frame=300&object=1:18' });
  await page.waitForSelector('.camera[data-frame="300"]');
  await page.locator('img.background').evaluate((image) => image.decode());
  const player = await page.locator('#player').boundingBox();
  for (const part of ['.picture', '.past', '.events', '.objects']) {
    const { y, height } = await page.locator(part).boundingBox();
    assert.ok(y + height <= player.y, `${part} ends at ${y + height}, the player begins at ${player.y}`);
  }
  await page.screenshot({ path: join(pictures, 'viewer.jpg'), quality: 85 });
  await viewer.stop();
});

test('the picture is the largest thing in a window of 1920 x 1080', async () => {
  const viewer = await Viewer.start('--recording', street);
  const { page } = await look(viewer, { width: 1920, height: 1080 });
  const sizeOf = async (part) => {
    const { width, height } = await page.locator(part).boundingBox();
    return width * height;
  };
  const others = await Promise.all(['.bar', '.past', '.side', '#player'].map(sizeOf));
  assert.ok(await sizeOf('.picture') > others.reduce((sum, each) => sum + each), `${others}`);
  await viewer.stop();
});

test('pictures and timelines of two cameras are in a window of 1440 x 900', async () => {
  const backgrounds = [`1=${street}/background.jpg`, `2=${street}-mirrored/background.jpg`];
  const viewer = await Viewer.start('--camera', '1', '2', '--background', ...backgrounds);
  const { page } = await look(viewer, window);
  await page.waitForFunction(() => document.querySelectorAll('.camera[data-camera="1"] td.name').length >= 3);
  const player = await page.locator('#player').boundingBox();
  for (const camera of [1, 2]) {
    const { y, height } = await cameraOf(page, camera).locator('.seekable').boundingBox();
    assert.ok(y + height <= player.y, `the timeline of camera ${camera} ends at ${y + height}`);
  }
  await page.screenshot({ path: join(pictures, 'viewer-live.jpg'), quality: 85 });
  await viewer.stop();
});
