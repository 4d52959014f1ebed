// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

// Viewers to look at, browsers that look, and what both must agree on. Folders come from the environment: TARNVOD_BUILD is
// the build, TARNVOD_RECORDINGS the recordings, SCREENSHOTS where pictures of the pages go.

import assert from 'node:assert/strict';
import { spawn } from 'node:child_process';
import { once } from 'node:events';
import { mkdir } from 'node:fs/promises';
import { join } from 'node:path';
import { createInterface } from 'node:readline';
import axe from 'axe-core';
import { chromium } from 'playwright-core';

const { TARNVOD_BUILD: build, TARNVOD_RECORDINGS: recordings, SCREENSHOTS: screenshots } = process.env;
export const street = join(recordings, 'street');

/** Runs `tarnvod render`. */
export async function render(...words) {
  const child = spawn(join(build, 'tools/tarnvod/tarnvod'), ['render', ...words], { stdio: 'inherit' });
  assert.deepEqual(await once(child, 'exit'), [0, null]);
}

/** `tarnvod view` and a service that can be taken down and brought up. */
export class Viewer {
  static start(...words) {
    return Viewer.startAt('0', ...words);
  }

  static startAt(port, ...words) {
    return Viewer.startWith(`${street}:${join(recordings, 'street-mirrored')}`, port, ...words);
  }

  /** With cameras that play these recordings, separated by colons. */
  static async startWith(played, port, ...words) {
    const program = join(build, 'tools/service-switch/tarnvod-service-switch');
    const environment = { ...process.env, TARNVOD_HOST_RECORDINGS: played };
    const child = spawn(program, ['view', '--port', port, ...words], { env: environment, stdio: ['pipe', 'pipe', 'inherit'] });
    const [url] = await Promise.race([once(createInterface(child.stdout), 'line'), once(child, 'exit')]);
    assert.match(`${url}`, /^http:/, 'the viewer ended');
    return new Viewer(child, url);
  }

  constructor(child, url) {
    this.child = child;
    this.url = url;
  }

  get port() {
    return new URL(this.url).port;
  }

  switchService(word) {
    this.child.stdin.write(`${word}\n`);
  }

  async stop() {
    if (this.child.exitCode === null) {
      this.child.kill('SIGTERM');
      await once(this.child, 'exit');
    }
    assert.equal(this.child.exitCode, 0);
  }

  async json(path) {
    return (await fetch(this.url + path)).json();
  }

  /** Takes part as one more browser: the frames that are sent, by camera and time stamp, as they come; `first` waits for one. */
  collectFrames() {
    const frames = new Map();
    const stop = new AbortController();
    let begin;
    const first = new Promise((resolve) => { begin = resolve; });
    const read = async () => {
      const { body } = await fetch(`${this.url}events`, { signal: stop.signal });
      let text = '';
      for await (const bytes of body.pipeThrough(new TextDecoderStream())) {
        const events = (text + bytes).split('\n\n');
        text = events.pop();
        for (const event of events.filter((each) => each.startsWith('event: frame\n'))) {
          const frame = JSON.parse(event.slice(event.indexOf('data: ') + 6));
          frames.set(`${frame.camera} ${frame.timestamp}`, frame);
          begin();
        }
      }
    };
    read().catch((error) => assert.equal(error.name, 'AbortError'));
    return { frames, first, stop: () => stop.abort() };
  }
}

let browser;

/** One browser for all tests of a file. */
export async function openBrowser() {
  browser = await chromium.launch({ executablePath: '/usr/bin/chromium', args: ['--no-sandbox'] });
}

export const closeBrowser = () => browser.close();

/** Opens the page, and waits until a frame of the camera `shown` is; with null, for no frame. What it complains of, and whatever it asks of anybody but its viewer, stands in `complaints`. */
export async function look(viewer, { width = 1280, height = 860, address = '', shown = 1, ...options } = {}) {
  const context = await browser.newContext({ viewport: { width, height }, ...options });
  const page = await context.newPage();
  const complaints = [];
  page.on('pageerror', (error) => complaints.push(`error: ${error.message}`));
  page.on('console', (message) => message.type() === 'error' && complaints.push(`console: ${message.text()}`));
  page.on('dialog', (dialog) => complaints.push(`dialog: ${dialog.message()}`) && dialog.dismiss());
  page.on('request', (request) => {
    if (!request.url().startsWith(viewer.url) && !request.url().startsWith('data:')) {
      complaints.push(`request: ${request.url()}`);
    }
  });
  await page.goto(viewer.url + address);
  await page.waitForSelector(shown === null ? '.camera' : `.camera[data-camera="${shown}"][data-timestamp]:not([data-timestamp=""])`);
  return { page, complaints };
}

/** Two cameras that are seen live: their viewer, the frames that it sends, a page, and what that complains of. */
export async function lookAtTwoCameras() {
  const viewer = await Viewer.start('--camera', '1', '2');
  const sent = viewer.collectFrames();
  const stop = () => {
    sent.stop();
    return viewer.stop();
  };
  return { viewer, sent, stop, ...await look(viewer) };
}

/** Waits until the first camera shows the frame with this number. */
export const shows = (page, index) => page.waitForSelector(`.camera[data-frame="${index}"]`);

export const cameraOf = (page, camera) => page.locator(`.camera[data-camera="${camera}"]`);

/** What is drawn of a camera at this moment: the canvas's size, the frame's time stamp, the rows next to it. */
export function drawn(page, camera) {
  return cameraOf(page, camera).evaluate((section) => ({
    timestamp: Number(section.dataset.timestamp),
    width: section.querySelector('canvas').clientWidth,
    height: section.querySelector('canvas').clientHeight,
    rows: [...section.querySelectorAll('tr[data-object-id]:not(.attributes)')].map((row) => ({
      cells: [...row.cells].slice(0, 3).map((cell) => cell.textContent),
      attributes: [...row.nextElementSibling.querySelectorAll('span')].map((span) => span.textContent),
      box: row.dataset.box.split(' ').map(Number),
      colour: getComputedStyle(row.querySelector('.swatch')).backgroundColor.match(/[\d.]+/g).map(Number),
    })),
  }));
}

const words = (typeName) => typeName.replaceAll('_', ' ').replace(/ colour$/, '');

/** The rows that a frame must give, but for their colours. */
export function expectedRows(frame, width, height) {
  const status = { TrackedConfident: 'confident', TrackedUnconfident: 'unconfident', Untracked: 'untracked' };
  return [...frame.detections].sort((a, b) => a.objectId - b.objectId).map((each) => ({
    cells: [`${each.className} ${each.objectId}`, `${each.score}`, status[each.status]],
    attributes: each.attributes.map(({ typeName, className, score }) => `${words(typeName)} ${className}, ${score}`),
    box: [each.coord1 * width, each.coord2 * height, (each.coord3 - each.coord1) * width,
      (each.coord4 - each.coord2) * height],
  }));
}

export function assertDrawn(picture, frame) {
  const expected = expectedRows(frame, picture.width, picture.height);
  assert.deepEqual(picture.rows.map(({ cells, attributes }) => ({ cells, attributes })),
    expected.map(({ cells, attributes }) => ({ cells, attributes })));
  picture.rows.forEach(({ box }, index) => box.forEach((number, place) =>
    assert.ok(Math.abs(number - expected[index].box[place]) < 0.02, `${box} is not ${expected[index].box}`)));
}

/** Pauses at a moment that the condition likes; gives what is drawn then. */
export async function pauseWhen(page, camera, condition) {
  for (;;) {
    await page.locator('#pause').click();
    const picture = await drawn(page, camera);
    if (condition(picture)) {
      return picture;
    }
    await page.locator('#pause').click();
    await shownAfter(page, camera, picture.timestamp);
  }
}

/** Waits until the camera shows another frame; gives its time stamp. */
export async function shownAfter(page, camera, timestamp) {
  const handle = await page.waitForFunction(([number, before]) => {
    const shown = document.querySelector(`.camera[data-camera="${number}"]`).dataset.timestamp;
    return shown !== before && shown;
  }, [camera, `${timestamp}`]);
  return Number(await handle.jsonValue());
}

/** The colour of a canvas at places in units of the page. The canvas is the camera's first, its picture, or second. */
export function pixels(page, camera, places, canvas = 0) {
  return cameraOf(page, camera).locator('canvas').nth(canvas).evaluate((element, points) => {
    const context = element.getContext('2d');
    return points.map(([x, y]) =>
      [...context.getImageData(Math.floor(x * devicePixelRatio), Math.floor(y * devicePixelRatio), 1, 1).data].slice(0, 3));
  }, places);
}

export const isSameColour = (one, other) => one.every((part, index) => Math.abs(part - other[index]) <= 8);

/** Room that a label may take around its box. */
const around = ([x, y, width, height]) => [x - 120, y - 40, x + Math.max(width, 120) + 4, y + height + 36];

/** Places on the left edges of boxes where nothing else is drawn, with the colour that must be there. */
export function freeEdges({ rows, width }) {
  return rows.filter(({ cells }) => cells[2] === 'confident').map(({ box: [x, y, , height], colour }) =>
    ({ place: [x, y + height / 2], colour, box: [x, y] }))
    .filter(({ place: [x, y], box }) => x > 2 && x < width - 2 && rows.every(({ box: other }) => {
      const [left, top, right, bottom] = around(other);
      return (other[0] === box[0] && other[1] === box[1]) || x < left || x > right || y < top || y > bottom;
    }));
}

/** The rules of axe-core, in each colour scheme; leaves the page light. */
export async function assertAccessible(page) {
  for (const media of [{ colorScheme: 'dark' }, { forcedColors: 'active' }, { colorScheme: 'light', forcedColors: 'none' }]) {
    await page.emulateMedia(media);
    await page.evaluate(axe.source);
    const { violations } = await page.evaluate(() => window.axe.run());
    assert.deepEqual(violations.map(({ id, nodes }) => `${id}: ${nodes.map(({ html }) => html)}`), []);
  }
}

export async function takePicture(page, name, fullPage = true) {
  await mkdir(screenshots, { recursive: true });
  await page.screenshot({ path: join(screenshots, `${name}.png`), fullPage });
}

/** Nothing sticks out to the side. */
export async function assertFits(page) {
  const { needed, there } = await page.evaluate(() =>
    ({ needed: document.documentElement.scrollWidth, there: document.documentElement.clientWidth }));
  assert.ok(needed <= there, `the page is ${needed} wide where there is room for ${there}`);
}

const heights = { 390: 844, 1024: 768, 1440: 900, 1920: 1080 };

/** Takes a picture of each width and colour scheme; leaves the page wide and light, as it was opened. */
export async function assertFitsWindows(page, name) {
  for (const [width, colorScheme] of [[390, 'dark'], [390, 'light'], [1024, 'light'], [1440, 'light'], [1920, 'dark'], [1280, 'light']]) {
    await page.setViewportSize({ width, height: heights[width] ?? 860 });
    await page.emulateMedia({ colorScheme });
    await page.waitForTimeout(300);
    await assertFits(page);
    await takePicture(page, `${name}-${width}-${colorScheme}`);
  }
}
