// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

import { byId, make } from './format.js';

/** A shape that was drawn: `[left, top, right, bottom]` is a region, `[x]` an upright line; shares of the picture. */
export const isRegion = (shape) => shape.length === 4;

export const regionBetween = (one, other) =>
  [Math.min(one.x, other.x), Math.min(one.y, other.y), Math.max(one.x, other.x), Math.max(one.y, other.y)];

const rounded = (value) => Number(value.toFixed(3));

/** What a program takes for the shape, in the service's box convention: an option, or a line of the example. */
export function shapeText(shape, { form, range: [left, top, right, bottom] }) {
  const across = (share) => left + share * (right - left);
  const down = (share) => top + share * (bottom - top);
  if (!isRegion(shape)) {
    return `constexpr float line = ${rounded(across(shape[0])).toFixed(3)}F;`;
  }
  const [x1, y1, x2, y2] = [across(shape[0]), down(shape[1]), across(shape[2]), down(shape[3])];
  return `--roi ${[x1, y1, ...(form === 'size' ? [x2 - x1, y2 - y1] : [x2, y2])].map(rounded).join(',')}`;
}

export function drawShape(context, shape, width, height, viewport, ink) {
  const [from, to] = isRegion(shape)
    ? [{ x: shape[0], y: shape[1] }, { x: shape[2], y: shape[3] }] : [{ x: shape[0], y: 0 }, { x: shape[0], y: 1 }];
  const [one, other] = [viewport.toView(from), viewport.toView(to)];
  for (const [colour, lineWidth] of [[ink.ground, 5], [ink.mark, 2.5]]) {
    context.strokeStyle = colour;
    context.lineWidth = lineWidth;
    context.strokeRect(one.x * width, one.y * height, (other.x - one.x) * width, (other.y - one.y) * height);
  }
}

/** A text to be copied, with the buttons that do it and that remove what it stands for. */
export class CopyLine {
  #input = make('input', { type: 'text', readOnly: true, ariaLabel: 'Text to copy' });
  element;

  constructor(removed) {
    const copy = make('button', { type: 'button' }, 'Copy');
    const remove = make('button', { type: 'button' }, 'Remove');
    this.element = make('div', { className: 'copy-line', hidden: true }, this.#input, copy, remove);
    copy.addEventListener('click', () => this.#copy());
    remove.addEventListener('click', removed);
  }

  /** Nothing when the text is empty. */
  show(text) {
    this.#input.value = text;
    this.element.hidden = text === '';
  }

  /** Pages that are not secure may not write to the clipboard; there the text is selected. */
  #copy() {
    this.#input.select();
    navigator.clipboard?.writeText(this.#input.value).catch((error) => {
      byId('notice').textContent = `The text is selected, but cannot be copied: ${error.message}`;
      byId('notice').hidden = false;
    });
  }
}
