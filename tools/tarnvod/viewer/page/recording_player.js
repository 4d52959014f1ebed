// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

import { byId, durationText, lastNotAfter } from './format.js';

/** The buttons and the scrubber of recordings: they count the frames of the longest, the others go with its time. */
export class RecordingPlayer {
  #cameras;
  #timeWindow;
  #times;
  #duration;
  #chosen;
  #index = 0;
  #playing = false;
  #playedFrom = { wall: 0, recording: 0 };
  #scrubber = byId('scrubber');

  /** @param timeWindow  of the timelines, which goes with the time; `chosen`: called when another frame was chosen, but not for those that pass while it plays */
  constructor(cameras, timeWindow, chosen) {
    this.#cameras = cameras;
    this.#timeWindow = timeWindow;
    this.#chosen = chosen;
    this.#times = cameras.reduce((longest, each) => (each.duration > longest.duration ? each : longest)).times;
    this.#duration = Math.max(...cameras.map(({ duration }) => duration));
    this.#scrubber.max = Math.max(0, this.#times.length - 1);
    this.#scrubber.addEventListener('input', () => this.#goTo(Number(this.#scrubber.value)));
    this.#scrubber.addEventListener('change', () => this.#chosen());
    byId('speed').addEventListener('change', () => this.#markStart());
    byId('pause').textContent = 'Play';
  }

  /** The number of the frame that is shown, counted from 0. */
  get index() {
    return this.#index;
  }

  /** Its time, in seconds. */
  get at() {
    return this.#times[this.#index] ?? 0;
  }

  togglePause() {
    if (!this.#playing && this.#index === this.#times.length - 1) {
      this.#goTo(0);
    }
    this.#playing = !this.#playing && this.#times.length > 0;
    byId('pause').textContent = this.#playing ? 'Pause' : 'Play';
    this.#markStart();
    this.#showPlace();
    if (this.#playing) {
      requestAnimationFrame(() => this.#advance());
    } else {
      this.#chosen();
    }
  }

  seek(index) {
    this.#goTo(index);
    this.#chosen();
  }

  /** Shows the frame of this time; in seconds. */
  show(time) {
    this.seek(lastNotAfter(this.#times, time));
  }

  step(count) {
    this.seek(this.#index + count);
  }

  stepToEvent(direction) {
    const frames = this.#cameras.flatMap(({ events }) => events.map(({ at }) => this.#indexFrom(at)));
    const nearest = (one, other) => (direction > 0 ? Math.min(one, other) : Math.max(one, other));
    const target = frames.filter((frame) => direction * (frame - this.#index) > 0).reduce(nearest, direction * Infinity);
    if (Number.isFinite(target)) {
      this.seek(target);
    }
  }

  toStart() {
    this.seek(0);
  }

  toEnd() {
    this.seek(this.#times.length - 1);
  }

  /** The first frame that is not before this time. */
  #indexFrom(at) {
    const index = lastNotAfter(this.#times, at);
    return this.#times[index] === at ? index : Math.min(index + 1, this.#times.length - 1);
  }

  #goTo(index) {
    this.#index = Math.max(0, Math.min(Math.floor(index), this.#times.length - 1));
    this.#markStart();
    this.#show();
  }

  /** From here on the recordings' time goes on, as fast as was chosen. */
  #markStart() {
    this.#playedFrom = { wall: performance.now(), recording: this.#times[this.#index] ?? 0 };
  }

  #advance() {
    if (!this.#playing) {
      return;
    }
    const elapsed = ((performance.now() - this.#playedFrom.wall) / 1000) * Number(byId('speed').value);
    const index = lastNotAfter(this.#times, this.#playedFrom.recording + elapsed);
    if (index !== this.#index) {
      this.#index = index;
      this.#show();
    }
    if (index === this.#times.length - 1) {
      this.togglePause();
    } else {
      requestAnimationFrame(() => this.#advance());
    }
  }

  #show() {
    this.#showPlace();
    this.#timeWindow.reveal(this.at);
    this.#cameras.forEach((camera) => camera.show(this.at));
  }

  #showPlace() {
    const count = this.#times.length;
    const text = `frame ${count === 0 ? 0 : this.#index + 1} of ${count} · ` +
      `${durationText(this.at)} of ${durationText(this.#duration)}`;
    this.#scrubber.value = this.#index;
    this.#scrubber.setAttribute('aria-valuetext', text);
    byId('position').textContent = text;
    this.#cameras.forEach((camera) => camera.setPlaying(this.#playing));
  }
}
