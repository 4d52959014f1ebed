// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

import assert from 'node:assert/strict';
import { copyFile, mkdtemp, rm, writeFile } from 'node:fs/promises';
import { tmpdir } from 'node:os';
import { join } from 'node:path';
import { after, before, describe, test } from 'node:test';
import { long, number } from './protobuf.js';
import { Viewer, assertFits, cameraOf, closeBrowser, look, openBrowser, street, takePicture } from './support.js';

before(openBrowser);
after(closeBrowser);

const className = '<img src=x onerror=alert(1)>"\'&amp;</script><script>alert(2)</script>';
const attributeName = '<b onmouseover=alert(3)>hat</b>';
const valueName = '<svg onload=alert(4)>';

/** What a detector may say of itself: markup wherever there is a name. */
function hostileDetector() {
  const values = Array.from({ length: 20 }, (_, id) => long(3, number(1, id), long(2, valueName)));
  const attributes = Array.from({ length: 10 }, (_, id) => long(2, number(1, id), long(2, attributeName), ...values));
  return Buffer.concat([long(1, number(1, 1), long(2, className)), ...attributes]);
}

describe('names that are markup', () => {
  let folder;
  let viewer;
  let page;
  let complaints;

  before(async () => {
    folder = await mkdtemp(join(tmpdir(), 'tarnvod-view-'));
    await copyFile(join(street, 'scenes.pb'), join(folder, 'scenes.pb'));
    await writeFile(join(folder, 'detector-information.pb'), hostileDetector());
    viewer = await Viewer.start('--recording', folder);
    ({ page, complaints } = await look(viewer));
  });
  after(async () => {
    await viewer.stop();
    await rm(folder, { recursive: true });
  });

  test('are shown as they are written', async () => {
    assert.equal(await cameraOf(page, 1).locator('td.name').first().textContent(), `${className} 1`);
    assert.match(await cameraOf(page, 1).locator('.attributes span').first().textContent(),
      /^<b onmouseover=alert\(3\)>hat<\/b> <svg onload=alert\(4\)>, \d+$/);
    assert.equal(await page.locator('#classes label span').textContent(), className);
    await page.setViewportSize({ width: 400, height: 860 });
    await assertFits(page);
    await takePicture(page, 'hostile-400-light');
  });

  test('become no elements and run nothing', async () => {
    await page.locator('#pause').click();
    await page.waitForFunction(() => Number(document.querySelector('.camera').dataset.frame) > 3);
    assert.equal(await page.locator('body :is(img, svg, b)').count(), 0);
    assert.equal(await page.locator('script').count(), 1);
    assert.deepEqual(complaints, []);
  });

  test('could not become markup even if the page made the mistake', async () => {
    assert.match(await page.evaluate(() => {
      try {
        document.body.innerHTML = '<img src=x onerror=alert(5)>';
        return 'it did';
      } catch (error) {
        return error.name;
      }
    }), /^TypeError$/);
  });
});
