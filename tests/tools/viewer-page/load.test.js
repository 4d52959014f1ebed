// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

import assert from 'node:assert/strict';
import { copyFile, mkdtemp, rm, writeFile } from 'node:fs/promises';
import { tmpdir } from 'node:os';
import { join } from 'node:path';
import { after, before, test } from 'node:test';
import { delimited, float, long, number } from './protobuf.js';
import { Viewer, closeBrowser, look, openBrowser, street, takePicture } from './support.js';

before(openBrowser);
after(closeBrowser);

const [objects, framesPerSecond, seconds] = [100, 30, 15];

/** A human that moves around its place. */
function detection(id, frame) {
  const angle = frame / 20 + id;
  const x = ((id % 10) + 0.5) / 10.5 + 0.02 * Math.cos(angle);
  const y = (Math.floor(id / 10) + 0.3) / 10.5 + 0.02 * Math.sin(angle);
  return long(2, float(1, x), float(2, y), float(3, x + 0.03), float(4, y + 0.06), number(5, id + 1), number(6, 1),
    number(7, 80), number(8, 2));
}

function crowd(frame) {
  const time = number(1, Math.round((frame * 1e6) / framesPerSecond));
  return delimited(Buffer.concat([time, ...Array.from({ length: objects }, (_, id) => detection(id, frame))]));
}

/** The delay of each picture, in milliseconds, over some seconds. */
const delaysOver = (page, duration) => page.evaluate((milliseconds) => new Promise((resolve) => {
  const section = document.querySelector('.camera');
  const delays = [];
  const observer = new MutationObserver(() => delays.push(Number(section.dataset.delay)));
  observer.observe(section, { attributeFilter: ['data-pictures'] });
  setTimeout(() => resolve(delays), milliseconds);
}), 1000 * duration);

const median = (values) => [...values].sort((a, b) => a - b)[Math.floor(values.length / 2)];

test('a crowd is drawn without a delay that grows', async (context) => {
  const folder = await mkdtemp(join(tmpdir(), 'tarnvod-view-'));
  await copyFile(join(street, 'detector-information.pb'), join(folder, 'detector-information.pb'));
  await writeFile(join(folder, 'scenes.pb'), Buffer.concat(Array.from({ length: 300 }, (_, frame) => crowd(frame))));
  const viewer = await Viewer.startWith(folder, '0', '--camera', '1');
  const { page, complaints } = await look(viewer, { width: 1440, height: 900 });

  const delays = await delaysOver(page, seconds);

  const third = Math.floor(delays.length / 3);
  const [early, late] = [median(delays.slice(0, third)), median(delays.slice(-third))];
  context.diagnostic(`${objects} objects at ${framesPerSecond} frames/s: ${(delays.length / seconds).toFixed(1)} pictures/s, ` +
    `delay ${median(delays)} ms (median), ${Math.max(...delays)} ms (most)`);
  assert.ok(late < early + 250, `the delay grows from ${early} to ${late} ms`);
  assert.deepEqual(complaints, []);
  await takePicture(page, 'crowd-1440', false);
  await viewer.stop();
  await rm(folder, { recursive: true });
});
