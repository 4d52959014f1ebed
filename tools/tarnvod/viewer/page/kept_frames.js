// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

import { lastNotAfter } from './format.js';
import { trailLength, Trails } from './history.js';

/**
 * The frames that arrived lately, as the texts that they came in: these take a tenth of the memory of what is in them. The
 * oldest are forgotten when they are too old or together too long.
 */
export class KeptFrames {
  #times = [];
  #texts = [];
  #length = 0;
  #mostLength;
  #longest;

  /** @param mostLength  of all texts together, in characters; `longest`: in seconds */
  constructor(mostLength, longest) {
    this.#mostLength = mostLength;
    this.#longest = longest;
  }

  add(text, at) {
    this.#times.push(at);
    this.#texts.push(text);
    this.#length += text.length;
    this.#forget(at);
  }

  /** The same frames, whatever comes later. */
  copy() {
    const copied = new KeptFrames(this.#mostLength, this.#longest);
    copied.#times = [...this.#times];
    copied.#texts = [...this.#texts];
    return copied;
  }

  /** When each arrived, in seconds of the page's clock, in order. */
  get times() {
    return this.#times;
  }

  /** The frame that was the newest at this time; null before the first. */
  at(time) {
    const index = lastNotAfter(this.#times, time);
    return index < 0 ? null : JSON.parse(this.#texts[index]);
  }

  /** The frames from one time to another, each with the time `at`. */
  between(from, to) {
    const first = lastNotAfter(this.#times, from);
    const start = this.#times[first] === from ? first : first + 1;
    return this.#texts.slice(start, lastNotAfter(this.#times, to) + 1)
      .map((text, place) => ({ frame: JSON.parse(text), at: this.#times[start + place] }));
  }

  /** The trails of the last seconds before this time. */
  trailsAt(time, boxes) {
    const trails = new Trails(boxes);
    this.between(time - trailLength, time).forEach(({ frame, at }) => trails.add(frame, at));
    return trails;
  }

  #forget(now) {
    let count = 0;
    while (this.#length > this.#mostLength || now - this.#times[count] > this.#longest) {
      this.#length -= this.#texts[count].length;
      count += 1;
    }
    this.#times.splice(0, count);
    this.#texts.splice(0, count);
  }
}
