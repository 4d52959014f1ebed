// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

import assert from 'node:assert/strict';
import { mkdtemp, readFile, rm } from 'node:fs/promises';
import { tmpdir } from 'node:os';
import { join } from 'node:path';
import { pathToFileURL } from 'node:url';
import { after, before, describe, test } from 'node:test';
import {
  Viewer, assertAccessible, assertDrawn, assertFitsWindows, closeBrowser, drawn, look, openBrowser, render, shows, street,
} from './support.js';

before(openBrowser);
after(closeBrowser);

describe('two recordings in one HTML file', () => {
  let folder;
  let viewer;
  let page;
  let complaints;

  const url = () => pathToFileURL(join(folder, 'page.html')).href;
  const frameAt = async (index) => (await viewer.json(`frames.json?first=${index}&count=1`))[0];

  before(async () => {
    folder = await mkdtemp(join(tmpdir(), 'tarnvod-view-'));
    await render('--html', street, `${street}-mirrored`, '--output', join(folder, 'page.html'));
    viewer = await Viewer.start('--recording', street);
    ({ page, complaints } = await look({ url: url() }, { offline: true }));
  });
  after(async () => {
    await viewer.stop();
    await rm(folder, { recursive: true });
  });

  test('are drawn frame by frame as the viewer draws them', async () => {
    for (const index of [0, 99, 100, 350, 794]) {
      await page.locator('#scrubber').fill(`${index}`);
      await shows(page, index);
      assertDrawn(await drawn(page, 1), await frameAt(index));
    }
    assert.equal(await page.locator('.camera').count(), 2);
    assert.equal(await page.title(), 'street, street-mirrored');
  });

  test('play', async () => {
    await page.locator('#scrubber').fill('100');
    await page.locator('#pause').click();
    await page.waitForFunction(() => Number(document.querySelector('.camera').dataset.frame) > 105);
    await page.locator('#pause').click();
  });

  test('have their pictures behind the boxes', async () => {
    const sizes = await page.locator('img.background').evaluateAll((images) =>
      Promise.all(images.map((image) => image.decode().then(() => image.naturalWidth))));
    assert.ok(sizes.length === 2 && sizes.every((width) => width > 100), `${sizes}`);
  });

  test('have everything: events, the heat map, and what is saved', async () => {
    await page.locator('#scrubber').fill('300');
    await shows(page, 300);
    assert.ok(await page.locator('.events li').count() > 1);
    await page.locator('h1').click();
    await page.keyboard.press('h');
    await page.waitForSelector('.camera[data-heated="795"]');
    await page.keyboard.press('h');
    const download = page.waitForEvent('download');
    await page.locator('#tools summary').click();
    await page.getByRole('button', { name: 'Save objects (CSV)' }).click();
    assert.match(`${await readFile(await (await download).path())}`, /^camera,seconds,timestamp,objectId/);
  });

  test('are at the same moment again when the address is opened', async () => {
    await page.locator('#scrubber').fill('300');
    await page.locator('tr[data-object-id="18"] button').first().click();
    const { page: other, complaints: others } = await look({ url: url() }, { address: new URL(page.url()).hash, offline: true });
    await shows(other, 300);
    await other.locator('tr[data-object-id="18"].marked').first().waitFor();
    assert.deepEqual(others, []);
    await other.close();
    await page.keyboard.press('Escape');
  });

  test('fit into wide and narrow windows, light and dark', () => assertFitsWindows(page, 'html-file'));

  test('have nothing that axe-core objects to', () => assertAccessible(page));

  test('ask nobody for anything, and complain of nothing', () => assert.deepEqual(complaints, []));

  test('could not run markup even if the page made the mistake', async () => {
    assert.equal(await page.evaluate(() => {
      try {
        document.body.innerHTML = '<img src=x onerror=alert(1)>';
        return 'it did';
      } catch (error) {
        return error.name;
      }
    }), 'TypeError');
  });
});
