// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

import { attributeText, make } from './format.js';

/** Has the browser save a file. */
export function save(name, blob) {
  const url = URL.createObjectURL(blob);
  make('a', { href: url, download: name }).click();
  setTimeout(() => URL.revokeObjectURL(url), 10_000);
}

/** What is seen, with its background, as a PNG image. */
export function savePicture(name, canvas, background, viewport) {
  const { width, height } = canvas;
  const whole = Object.assign(document.createElement('canvas'), { width, height });
  const context = whole.getContext('2d');
  if (background) {
    const from = viewport.toView({ x: 0, y: 0 });
    context.drawImage(background, from.x * width, from.y * height, viewport.scale * width, viewport.scale * height);
  }
  context.drawImage(canvas, 0, 0);
  whole.toBlob((blob) => save(name, blob), 'image/png');
}

const columns = ['camera', 'seconds', 'timestamp', 'objectId', 'className', 'score', 'status', 'coord1', 'coord2', 'coord3', 'coord4',
  'attributes'];

/** A row for each object of each frame that is wanted; seconds count from `zero`. */
export const rowsOf = (camera, frames, zero, isWanted) => frames.flatMap(({ frame, at }) =>
  frame.detections.filter(isWanted).map((detection) => ({
    ...Object.fromEntries(columns.map((column) => [column, detection[column]])),
    camera,
    seconds: Number((at - zero).toFixed(3)),
    timestamp: frame.timestamp,
    attributes: detection.attributes.map(attributeText),
  })));

const quoted = (value) => {
  const text = Array.isArray(value) ? value.join('; ') : `${value ?? ''}`;
  return /[",\r\n]/.test(text) ? `"${text.replaceAll('"', '""')}"` : text;
};

export const toCsv = (rows) =>
  [columns, ...rows.map((row) => columns.map((column) => row[column]))].map((row) => `${row.map(quoted).join()}\n`).join('');
