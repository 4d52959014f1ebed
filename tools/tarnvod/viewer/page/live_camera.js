// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

import { CameraView } from './camera.js';
import { clock, clockText } from './clock.js';
import { counted, seconds } from './format.js';
import { HeatMap } from './heat.js';
import { History } from './history.js';
import { KeptFrames } from './kept_frames.js';

/** A picture that is older than this is not what happens now. In seconds. */
const longestDelay = 0.25;

/** The memory that a page's cameras share for frames of the past, in characters, and for how long these are kept. */
const mostKept = 64e6;

/** A camera that is seen live: keeps what arrives, and draws the newest, or a moment of the past. */
export class LiveCamera {
  #boxes;
  #history;
  #kept;
  #heat;
  #paused = null;
  #newest = null;
  #drawn = null;
  #passed = 0;
  #state = null;
  #stateAt = 0;
  #connected = true;
  #pictures = 0;

  constructor(number, setup, page) {
    this.#boxes = setup.boxes;
    this.#history = new History(setup.boxes);
    this.#heat = new HeatMap(setup.boxes);
    this.#kept = new KeptFrames(mostKept / setup.cameras.length, History.kept);
    this.view = new CameraView(`Camera ${number}`, number, setup, page);
    this.refresh();
  }

  /** Takes over tracks and events of the time before this page. */
  takeOver(tracks, events) {
    this.#history.takeOver(tracks, events);
  }

  /** Takes a frame, and the text that it came in. */
  add(frame, at, text) {
    this.#history.add(frame, at);
    this.#kept.add(text, at);
    this.#heat.add(frame);
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

  /** When the frames arrived that can be shown, in order. */
  get times() {
    return (this.#paused?.kept ?? this.#kept).times;
  }

  get eventTimes() {
    return (this.#paused?.history ?? this.#history).events.map(({ at }) => at);
  }

  /** The frames that the page keeps, each with its time `at`. */
  framesToSave() {
    const kept = this.#paused?.kept ?? this.#kept;
    return kept.between(kept.times[0] ?? 0, kept.times.at(-1) ?? 0);
  }

  /** What saved times count from. */
  get zero() {
    return (this.#paused?.kept ?? this.#kept).times[0] ?? 0;
  }

  /** Keeps the past as it is at this time, to show moments of it. */
  pause(now) {
    this.#paused = { now, kept: this.#kept.copy(), history: this.#history.copy() };
    this.#passed = 0;
    this.showPast(now);
  }

  /** Shows a moment of the past; only while paused. */
  showPast(at) {
    const { kept } = this.#paused;
    this.#paused.at = at;
    this.#paused.frame = kept.at(at);
    this.#paused.trails = kept.trailsAt(at, this.#boxes);
    this.refresh();
  }

  /** Goes on with the newest. */
  resume() {
    this.#paused = null;
    this.refresh();
  }

  /** Draws the newest frame, unless it is drawn already. Called for each picture of the browser. */
  paint() {
    if (this.#paused || this.#newest === this.#drawn) {
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
    this.view.setProblem(this.#connected ? 'No frames' : 'No connection to tarnvod view', this.#isPast() ? '' : problem);
    this.#choose();
    this.view.redraw();
  }

  #isPast = () => this.#paused !== null && this.#paused.at < this.#paused.now;

  #choose() {
    const to = this.#paused?.now ?? clock();
    const { tracks, events, trails } = this.#paused?.history ?? this.#history;
    this.view.show({
      frame: this.#paused ? this.#paused.frame : this.#drawn?.frame ?? null,
      trails: this.#paused?.trails ?? trails,
      tracks,
      events,
      now: this.#paused?.at ?? to,
      zero: to,
      cursor: this.#isPast() ? this.#paused.at : undefined,
      heat: this.#heat,
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
    if (this.#paused) {
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
