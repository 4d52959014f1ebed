// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

import { clock, clockText } from './clock.js';
import { byId, durationText } from './format.js';

/** In seconds; the scrubber's ends are multiples of it. */
const scrubberStep = 0.1;

/** The buttons and the scrubber of the live view: from now back over the frames that the page keeps. */
export class LivePlayer {
  #cameras;
  #timeWindow;
  #chosen;
  #scrubber = byId('scrubber');
  #paused = null;

  /** @param timeWindow  of the timelines, which goes with the time; `chosen`: called when another moment was chosen */
  constructor(cameras, timeWindow, chosen) {
    this.#cameras = cameras;
    this.#timeWindow = timeWindow;
    this.#chosen = chosen;
    this.#scrubber.step = scrubberStep;
    this.#scrubber.max = 0;
    this.#scrubber.setAttribute('aria-label', 'Seconds before now');
    this.#scrubber.addEventListener('input', () => this.#goTo(this.#to() + Number(this.#scrubber.value)));
    this.#scrubber.addEventListener('change', () => this.#chosen());
    this.refresh();
  }

  /** Its time, in seconds before now. */
  get at() {
    return this.#at() - this.#to();
  }

  togglePause() {
    if (this.#paused) {
      this.#paused = null;
      this.#cameras.forEach((camera) => camera.resume());
    } else {
      this.#pause();
    }
    this.refresh();
    this.#chosen();
  }

  /** The moment of the past that is shown, by the page's clock; null for now. */
  get moment() {
    return this.#paused ? this.#paused.at : null;
  }

  /** Shows this moment, or the nearest that there is. In seconds of the page's clock. */
  show(at) {
    this.#goTo(at);
    this.#chosen();
  }

  #goTo(at) {
    if (!this.#paused) {
      this.#pause();
    }
    this.#paused.at = Math.min(Math.max(at, this.#from()), this.#paused.now);
    this.#timeWindow.reveal(this.at);
    this.#cameras.forEach((camera) => camera.showPast(this.#paused.at));
    this.refresh();
  }

  /** Goes on or back by this many frames. */
  step(count) {
    const times = this.#cameras.flatMap((camera) => camera.times);
    // What is shown is the last frame before this moment, unless one arrived at it: not one to go back to.
    this.#stepAmong(times, count < 0 && !times.includes(this.#at()) ? count - 1 : count);
  }

  stepToEvent(direction) {
    this.#stepAmong(this.#cameras.flatMap(({ eventTimes }) => eventTimes), direction);
  }

  toStart() {
    this.show(this.#from());
  }

  toEnd() {
    this.show(this.#to());
  }

  /** Shows where the picture is in time. Called a few times a second. */
  refresh() {
    const [from, to, at] = [this.#from(), this.#to(), this.#at()];
    byId('pause').textContent = this.#paused ? 'Resume' : 'Pause';
    this.#scrubber.min = Math.min(-scrubberStep, Math.floor((from - to) / scrubberStep) * scrubberStep).toFixed(1);
    this.#scrubber.value = at - to;
    const text = this.#paused ? `${clockText(at)}, ${durationText(clock() - at)} ago` : `${clockText(at)}, live`;
    this.#scrubber.setAttribute('aria-valuetext', text);
    byId('position').textContent = text;
  }

  #pause() {
    const now = clock();
    this.#paused = { now, at: now };
    this.#cameras.forEach((camera) => camera.pause(now));
  }

  #stepAmong(times, count) {
    const distinct = [...new Set(times)].sort((a, b) => a - b);
    const [before, after] = [distinct.filter((each) => each < this.#at()), distinct.filter((each) => each > this.#at())];
    const target = count > 0 ? after[count - 1] ?? after.at(-1) : before.at(count) ?? before[0];
    if (target !== undefined) {
      this.show(target);
    }
  }

  #at = () => this.#paused?.at ?? clock();
  #to = () => this.#paused?.now ?? clock();
  #from = () => Math.min(this.#to(), ...this.#cameras.map(({ times }) => times[0] ?? Infinity));
}
