// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

import assert from 'node:assert/strict';
import { readFile } from 'node:fs/promises';
import { after, before, describe, test } from 'node:test';
import { Viewer, assertAccessible, cameraOf, closeBrowser, drawn, look, openBrowser, pixels, shows, street, takePicture } from './support.js';

before(openBrowser);
after(closeBrowser);

const canvasOf = (page) => cameraOf(page, 1).locator('canvas').first();

async function press(page, name) {
  await page.locator('#tools summary').click();
  await page.getByRole('button', { name }).click();
}

/** Drags over the picture between two places, as shares of it. */
async function drag(page, [x1, y1], [x2, y2]) {
  const { x, y, width, height } = await canvasOf(page).boundingBox();
  await page.mouse.move(x + x1 * width, y + y1 * height);
  await page.mouse.down();
  await page.mouse.move(x + x2 * width, y + y2 * height, { steps: 4 });
  await page.mouse.up();
}

async function saved(page, name) {
  const download = page.waitForEvent('download');
  await press(page, name);
  return readFile(await (await download).path());
}

describe('the tools of a recording', () => {
  let viewer;
  let page;
  let complaints;

  before(async () => {
    viewer = await Viewer.start('--recording', street);
    ({ page, complaints } = await look(viewer, { address: '#frame=300' }));
    await shows(page, 300);
  });
  after(() => viewer.stop());

  test('give the option for a region that is drawn, which its address keeps', async () => {
    await press(page, 'Draw a region');
    await drag(page, [0.25, 0.5], [0.5, 0.75]);
    const line = page.locator('.copy-line input');
    const numbers = /^--roi ([\d.]+),([\d.]+),([\d.]+),([\d.]+)$/.exec(await line.inputValue()).slice(1).map(Number);
    [0.25, 0.5, 0.5, 0.75].forEach((wanted, place) => assert.ok(Math.abs(numbers[place] - wanted) < 0.01, `${numbers}`));
    const { page: linked } = await look(viewer, { address: new URL(page.url()).hash });
    assert.equal(await linked.locator('.copy-line input').inputValue(), await line.inputValue());
    await linked.close();
    await takePicture(page, 'region-1280');
    await page.getByRole('button', { name: 'Remove' }).click();
    assert.ok(!await line.isVisible());
  });

  test('give the line of the example for a line that is drawn', async () => {
    await press(page, 'Draw a line');
    await drag(page, [0.3, 0.5], [0.4, 0.5]);
    const [, place] = /^constexpr float line = (0\.\d+)F;$/.exec(await page.locator('.copy-line input').inputValue());
    assert.ok(Math.abs(Number(place) - 0.4) < 0.01, place);
    await page.getByRole('button', { name: 'Remove' }).click();
  });

  test('enlarge the picture around its middle, which its address keeps, and show all of it again', async () => {
    const { width, rows: [{ box: before }] } = await drawn(page, 1);
    await page.locator('h1').click();
    await page.keyboard.press('+');
    const { rows: [{ box }] } = await drawn(page, 1);
    assert.ok(Math.abs(box[2] - 1.5 * before[2]) < 0.1);
    assert.ok(Math.abs(box[0] - (1.5 * (before[0] - width / 2) + width / 2)) < 0.5);
    const { page: linked } = await look(viewer, { address: new URL(page.url()).hash });
    await shows(linked, 300);
    assert.ok(Math.abs((await drawn(linked, 1)).rows[0].box[0] - box[0]) < 1);
    await linked.close();
    await page.keyboard.press('0');
    assert.deepEqual((await drawn(page, 1)).rows[0].box, before);
  });

  test('keep the selected object in the middle of an enlarged picture', async () => {
    await page.locator('tr[data-object-id="18"] button').click();
    await page.locator('h1').click();
    for (const key of ['+', '+', 'f']) {
      await page.keyboard.press(key);
    }
    for (const index of [300, 305]) {
      await page.locator('#scrubber').fill(`${index}`);
      await shows(page, index);
      const { width, height, rows } = await drawn(page, 1);
      const [x, y, w, h] = rows.find(({ cells }) => cells[0] === 'human 18').box;
      assert.ok(Math.abs(x + w / 2 - width / 2) < 1 && Math.abs(y + h - height / 2) < 1, `${[x, y, w, h]} in frame ${index}`);
    }
    for (const key of ['f', '0', 'Escape']) {
      await page.locator('h1').click();
      await page.keyboard.press(key);
    }
    await page.locator('#scrubber').fill('300');
    await shows(page, 300);
  });

  test('show where objects stood, and only while that is wanted', async () => {
    const { width, height } = await drawn(page, 1);
    const places = Array.from({ length: 200 }, (_, place) => [(place % 20 + 0.5) * (width / 20), height * (0.45 + 0.01 * Math.floor(place / 20))]);
    const cold = await pixels(page, 1, places);
    await page.locator('h1').click();
    await page.keyboard.press('h');
    await page.waitForSelector('.camera[data-heated="795"]');
    await page.mouse.move(0, 0);
    const warm = (await pixels(page, 1, places)).filter(([red, , blue], place) =>
      red > 200 && blue < 100 && `${cold[place]}` !== `${[red, 0, blue]}`);
    assert.ok(warm.length > 20, `${warm.length} places are warm`);
    await takePicture(page, 'heat-1280');
    await page.locator('h1').click();
    await page.keyboard.press('h');
    assert.deepEqual(await pixels(page, 1, places), cold);
  });

  test('save the selected object as CSV and as JSON', async () => {
    await page.locator('tr[data-object-id="18"] button').click();
    const rows = JSON.parse(await saved(page, 'Save objects (JSON)'));
    const { objects } = await viewer.json('recording.json');
    assert.equal(rows.length, objects.find(({ objectId }) => objectId === 18).frames);
    assert.ok(rows.every(({ objectId, className }) => objectId === 18 && className === 'human'));
    const lines = `${await saved(page, 'Save objects (CSV)')}`.trimEnd().split('\n');
    assert.match(lines[0], /^camera,seconds,timestamp,objectId,className,score/);
    assert.equal(lines.length, rows.length + 1);
    assert.equal(lines[1].split(',').slice(0, 4).join(), `1,${rows[0].seconds},${rows[0].timestamp},18`);
    await page.keyboard.press('Escape');
  });

  test('save the picture with its background as PNG', async () => {
    const png = await saved(page, 'Save picture (PNG)');
    assert.equal(png.subarray(1, 4).toString(), 'PNG');
    const [width, height] = [png.readUInt32BE(16), png.readUInt32BE(20)];
    assert.ok(Math.abs(width / height - 4 / 3) < 0.02);
    assert.ok(png.length > 100_000, `${png.length} bytes are too few for a photograph`);
  });

  test('have nothing that axe-core objects to', async () => {
    await page.locator('#tools summary').click();
    await takePicture(page, 'tools-1280');
    await assertAccessible(page);
  });

  test('make the page complain of nothing', () => assert.deepEqual(complaints, []));
});
