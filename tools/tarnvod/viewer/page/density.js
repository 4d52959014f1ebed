// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

import { colourOf } from './colours.js';

/** How wide a step of the density is, in units of the page. */
const stepWidth = 3;

/** For how much of each step objects were there. */
class Coverage {
  #parts;
  #changes;

  constructor(count) {
    this.#parts = new Float64Array(count);
    this.#changes = new Float64Array(count + 1);
  }

  /** An object was there from one time to another, in steps. */
  add(from, to) {
    const last = this.#parts.length - 1;
    const [first, end] = [Math.min(Math.floor(from), last), Math.min(Math.floor(to), last)];
    this.#parts[end] += to - end;
    this.#parts[first] -= from - first;
    this.#changes[first] += 1;
    this.#changes[end] -= 1;
  }

  get steps() {
    let whole = 0;
    return this.#parts.map((part, step) => {
      whole += this.#changes[step];
      return whole + part;
    });
  }
}

/** How many objects of each class there were at a time, on average over each step of the span: by class name. */
export function densityOf(tracks, { from, to }, width) {
  const count = Math.max(1, Math.ceil(width / stepWidth));
  const stepOf = (at) => Math.min(Math.max(0, ((at - from) / (to - from)) * count), count);
  const classes = [...new Set(tracks.map(({ className }) => className))].sort();
  const coverage = new Map(classes.map((className) => [className, new Coverage(count)]));
  tracks.forEach(({ className, first, last }) => coverage.get(className).add(stepOf(first), stepOf(last)));
  return new Map([...coverage].map(([className, { steps }]) => [className, steps]));
}

const rounded = (value) => (value < 10 ? value.toFixed(1) : `${Math.round(value)}`);

/**
 * Draws the classes on top of each other, as high as the largest sum needs. Gives the legend: each class with its colour, and
 * what the greatest height stands for.
 */
export function drawDensity(context, density, { top, bottom }, ink) {
  const classes = [...density];
  const sums = classes.reduce((all, [, steps]) => all.map((sum, step) => sum + steps[step]), [...(classes[0]?.[1] ?? [])].fill(0));
  const most = sums.reduce((one, other) => Math.max(one, other), 0);
  const heightOf = (value) => (most > 0 ? (value / most) * (bottom - top - 4) : 0);
  const base = sums.map(() => bottom);
  classes.forEach(([, steps], place) => {
    context.fillStyle = colourOf(place + 1);
    steps.forEach((value, step) => {
      const height = heightOf(value);
      base[step] -= height;
      context.fillRect(step * stepWidth, base[step], stepWidth, height);
    });
  });
  context.fillStyle = ink.grid;
  context.fillRect(0, bottom - 1, sums.length * stepWidth, 1);
  return [{ text: `objects at a time, at most ${rounded(most)}:` },
    ...classes.map(([className], place) => ({ text: className, colour: colourOf(place + 1) })),
    { text: 'zoom in to see each object' }];
}
