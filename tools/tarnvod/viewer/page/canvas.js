// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

import { inks } from './colours.js';

/** A canvas that always knows its size, so that drawing never makes the browser lay out the page. */
export class Canvas {
  element = document.createElement('canvas');
  #context = this.element.getContext('2d');
  width = 0;
  height = 0;

  /** @param resized  called when there is another size to draw for */
  constructor(resized) {
    new ResizeObserver(([{ contentRect }]) => {
      const [width, height] = [Math.round(contentRect.width), Math.round(contentRect.height)];
      if (width !== this.width || height !== this.height) {
        [this.width, this.height] = [width, height];
        resized();
      }
    }).observe(this.element);
  }

  /** Clears the canvas, sharp on the screen; gives what draws on it in units of the page. */
  begin() {
    const scale = devicePixelRatio;
    const [columns, rows] = [Math.round(this.width * scale), Math.round(this.height * scale)];
    if (this.element.width !== columns || this.element.height !== rows) {
      this.element.width = columns;
      this.element.height = rows;
    }
    const context = this.#context;
    context.setTransform(scale, 0, 0, scale, 0, 0);
    const ink = inks();
    context.fillStyle = ink.ground;
    context.fillRect(0, 0, this.width, this.height);
    return { context, width: this.width, height: this.height, ink };
  }
}

const mostWidthsKept = 2000;
const widths = new Map();

/** How wide a text is in a font; measured once. Sets the context's font. */
export function widthOf(context, font, text) {
  context.font = font;
  const key = `${font} ${text}`;
  let width = widths.get(key);
  if (width === undefined) {
    if (widths.size >= mostWidthsKept) {
      widths.clear();
    }
    width = context.measureText(text).width;
    widths.set(key, width);
  }
  return width;
}

/** The text, cut where it is longer than there is room. */
export function fittingText(context, font, text, room) {
  if (widthOf(context, font, text) <= room) {
    return text;
  }
  let [fits, tooLong] = [0, text.length];
  while (tooLong - fits > 1) {
    const length = Math.floor((fits + tooLong) / 2);
    if (widthOf(context, font, `${text.slice(0, length)}…`) <= room) {
      fits = length;
    } else {
      tooLong = length;
    }
  }
  return fits > 0 ? `${text.slice(0, fits)}…` : '';
}
