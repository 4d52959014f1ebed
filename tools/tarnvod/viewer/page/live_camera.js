// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

import { CameraView } from './camera.js';
import { clock, clockText } from './clock.js';
import { counted, seconds } from './format.js';
import { History } from './history.js';

/** A picture that is older than this is not what happens now. In seconds. */
const longestDelay = 0.25;

/** A camera that is seen live: keeps what arrives, and draws the newest when it is asked to. */
export class LiveCamera {
  #history;
  #shown;
  #newest = null;
  #drawn = null;
  #pausedAt = null;
  #passed = 0;
  #state = null;
  #stateAt = 0;
  #connected = true;
  #pictures = 0;

  constructor(number, setup, filters, selection) {
    this.#history = new History(setup.boxes);
    this.#shown = this.#history;
    this.view = new CameraView(`Camera ${number}`, number, setup, filters, selection);
    this.refresh();
  }

  /** Takes over tracks and events of the time before this page. */
  takeOver(tracks, events) {
    this.#history.takeOver(tracks, events);
  }

  add(frame, at) {
    this.#history.add(frame, at);
    this.#newest = { frame, at };
    this.#passed += 1;
  }

  setState(state) {
    this.#state = state;
    this.#stateAt = clock();
    this.#connected = true;
  }

  loseConnection() {
    this.#connected = false;
    this.refresh();
  }

  /** Keeps what is shown as it is, or goes on with the newest. */
  setPaused(paused) {
    this.#pausedAt = paused ? clock() : null;
    this.#shown = paused ? this.#history.copy(this.#pausedAt) : this.#history;
    this.#passed = 0;
    this.#drawn = this.#newest;
    this.refresh();
  }

  /** Draws the newest frame, unless it is drawn already. Called for each picture of the browser. */
  paint() {
    if (this.#pausedAt !== null || this.#newest === this.#drawn) {
      return;
    }
    this.#drawn = this.#newest;
    this.#pictures += 1;
    this.#choose();
    this.view.drawPicture();
    this.view.section.dataset.pictures = this.#pictures;
    this.view.section.dataset.delay = Math.round(1000 * (clock() - this.#drawn.at));
  }

  /** Draws everything, also what changes by the passing of time. Called a few times a second. */
  refresh() {
    this.#history.forget(clock());
    const [state, text] = this.#stateText();
    this.view.setState(state, text, this.#summary());
    const problem = this.#connected ? this.#state?.problem ?? '' : 'Reconnecting…';
    this.view.setProblem(this.#connected ? 'No frames' : 'No connection to tarnvod view', problem);
    this.#choose();
    this.view.redraw();
  }

  #choose() {
    const now = this.#pausedAt ?? clock();
    const { trails, tracks, events } = this.#shown;
    this.view.show({
      frame: this.#drawn?.frame ?? null,
      trails,
      tracks,
      events,
      now,
      span: { from: now - History.window, to: now, zero: now },
      timeText: clockText,
    });
  }

  #stateText() {
    if (!this.#connected) {
      return ['lost', 'not connected'];
    }
    const texts = { receiving: 'receiving', silent: 'down', waiting: 'down', refused: 'refused' };
    const state = this.#state?.state;
    return state ? [state, texts[state]] : ['connecting', 'connecting'];
  }

  #summary() {
    if (!this.#state) {
      return [];
    }
    const { frames, framesPerSecond, interruptions } = this.#state;
    const summary = [`${framesPerSecond.toFixed(1)} frames/s`, this.#ageText(), counted(frames, 'frame')];
    if (interruptions > 0) {
      summary.push(counted(interruptions, 'interruption'));
    }
    if (this.#pausedAt !== null) {
      summary.push(`paused, ${counted(this.#passed, 'frame')} since`);
    } else if (this.#delay() > longestDelay) {
      summary.push(`picture ${seconds(this.#delay())} behind`);
    }
    return summary;
  }

  /** How far the last picture was behind when it was drawn. In seconds. */
  #delay = () => Number(this.view.section.dataset.delay ?? 0) / 1000;

  #ageText() {
    const now = clock();
    const ages = this.#newest === null ? [] : [now - this.#newest.at];
    if (this.#state.secondsSinceFrame !== null) {
      ages.push(this.#state.secondsSinceFrame + now - this.#stateAt);
    }
    return ages.length > 0 ? `last frame ${seconds(Math.max(0, Math.min(...ages)))} ago` : 'no frame yet';
  }
}
