// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

import assert from 'node:assert/strict';
import { copyFile, mkdtemp, rm, writeFile } from 'node:fs/promises';
import { tmpdir } from 'node:os';
import { join } from 'node:path';
import { after, before, describe, test } from 'node:test';
import { delimited, float, long, number } from './protobuf.js';
import { Viewer, closeBrowser, look, openBrowser, street, takePicture } from './support.js';

before(openBrowser);
after(closeBrowser);

const [objects, objectsPerFrame, secondsPerFrame] = [130_000, 500, 5];

const detection = (id) =>
  long(2, float(1, 0.4), float(2, 0.4), float(3, 0.5), float(4, 0.6), number(5, id), number(6, 1), number(7, 80), number(8, 2));
/** An event `Delete` of an object. */
const deletion = (id) => long(3, number(1, 0), number(2, id));

const scene = (frame, contents) =>
  delimited(Buffer.concat([number(1, frame * secondsPerFrame * 1e6), ...contents]));

const numbered = (count, make) => Array.from({ length: count }, (_, index) => make(index));

const framesForAll = objects / objectsPerFrame;

/** Frames in which every object is seen once; numbered from the first one. */
function onceEach(contentsOf, first = 0) {
  return numbered(framesForAll, (frame) =>
    scene(first + frame, numbered(objectsPerFrame, (index) => contentsOf(frame * objectsPerFrame + index + 1)).flat()));
}

/** Opens the page on a recording of these frames, and gives what it then shows. */
async function lookAt(name, frames) {
  const folder = await mkdtemp(join(tmpdir(), 'tarnvod-view-'));
  await copyFile(join(street, 'detector-information.pb'), join(folder, 'detector-information.pb'));
  await writeFile(join(folder, 'scenes.pb'), Buffer.concat(frames));
  const viewer = await Viewer.start('--recording', folder);
  const { page, complaints } = await look(viewer);
  const { objects: listed } = await viewer.json('recording.json');
  assert.equal(listed.length, objects);
  await page.locator('#scrubber').fill('2');
  await page.waitForSelector('.camera[data-frame="2"]');
  assert.deepEqual(complaints, []);
  await takePicture(page, name, false);
  const height = await page.locator('.camera canvas').nth(1).evaluate((canvas) => canvas.clientHeight);
  await viewer.stop();
  await rm(folder, { recursive: true });
  return { height };
}

describe(`a timeline of ${objects} objects`, () => {
  test('is drawn where they follow one another', async () => {
    const { height } = await lookAt('many-objects-in-turn', onceEach((id) => [detection(id), deletion(id)]));
    assert.ok(height > 20 && height < 300, `${height} high`);
  });

  test('is drawn where they are all there at once', async () => {
    const seenTwice = [0, framesForAll].flatMap((first) => onceEach((id) => [detection(id)], first));
    const { height } = await lookAt('many-objects-at-once', seenTwice);
    assert.ok(height > 20 && height < 300, `${height} high`);
  });
});
