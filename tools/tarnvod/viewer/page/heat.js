// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

import { boxOf, footOf } from './boxes.js';

const [columns, rows] = [64, 48];

/** How often objects stood at each place of a picture, for each class. */
export class HeatMap {
  #boxes;
  #counts = new Map();
  #image = new OffscreenCanvas(columns, rows);

  constructor(boxes) {
    this.#boxes = boxes;
  }

  add(frame) {
    for (const detection of frame.detections) {
      const box = boxOf(detection, this.#boxes);
      const { x, y } = box ? footOf(box) : { x: -1, y: -1 };
      if (x >= 0 && x < 1 && y >= 0 && y < 1) {
        this.#of(detection.className)[Math.floor(y * rows) * columns + Math.floor(x * columns)] += 1;
      }
    }
  }

  /** Draws the classes that are shown, from yellow to red, over a picture of this size. */
  draw(context, width, height, viewport, isClassShown) {
    const shown = [...this.#counts].filter(([className]) => isClassShown(className)).map(([, counts]) => counts);
    const sums = Array.from({ length: columns * rows }, (_, place) => shown.reduce((sum, counts) => sum + counts[place], 0));
    const most = sums.reduce((one, other) => Math.max(one, other), 1);
    const image = new ImageData(columns, rows);
    sums.forEach((sum, place) => {
      const share = Math.log1p(sum) / Math.log1p(most);
      image.data.set([255, Math.round(210 * (1 - share)), 0, sum > 0 ? Math.round(60 + 150 * share) : 0], 4 * place);
    });
    this.#image.getContext('2d').putImageData(image, 0, 0);
    const from = viewport.toPicture({ x: 0, y: 0 });
    context.drawImage(this.#image, from.x * columns, from.y * rows, columns / viewport.scale, rows / viewport.scale,
      0, 0, width, height);
  }

  #of(className) {
    if (!this.#counts.has(className)) {
      this.#counts.set(className, new Float64Array(columns * rows));
    }
    return this.#counts.get(className);
  }
}
