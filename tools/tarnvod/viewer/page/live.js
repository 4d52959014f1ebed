// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

import { CameraView } from './camera.js';
import { ClassFilters } from './filters.js';
import { byId, counted, listEntries, seconds } from './format.js';
import { History } from './lives.js';

const clock = () => performance.now() / 1000;

/** A time of the page's clock as people read it. */
const clockText = (at) => new Date(performance.timeOrigin + at * 1000).toLocaleTimeString();

/** A camera that is seen live. */
class LiveCamera {
  #history = new History();
  #shown = this.#history;
  #frame = null;
  #pausedAt = null;
  #passed = 0;
  #state = null;
  #stateAt = 0;
  #seenAt = null;
  #connected = true;

  constructor(number, setup, filters) {
    this.view = new CameraView(`Camera ${number}`, setup, filters);
    this.view.section.dataset.camera = number;
    this.refresh();
  }

  add(frame) {
    const now = clock();
    this.#history.add(frame, now);
    this.#seenAt = now;
    if (this.#pausedAt !== null) {
      this.#passed += 1;
      return;
    }
    this.#frame = frame;
    this.#draw(now);
  }

  setState(state) {
    this.#state = state;
    this.#stateAt = clock();
    this.#connected = true;
    this.refresh();
  }

  loseConnection() {
    this.#connected = false;
    this.refresh();
  }

  /** Keeps what is shown as it is, or goes on with what has come since. */
  setPaused(paused) {
    this.#pausedAt = paused ? clock() : null;
    this.#shown = paused ? this.#history.copy() : this.#history;
    this.#passed = 0;
    if (!paused) {
      this.#frame = this.#history.frames.at(-1)?.frame ?? this.#frame;
    }
    this.refresh();
  }

  /** What changes by the passing of time. */
  refresh() {
    const [state, text] = this.#stateText();
    this.view.setState(state, text, this.#facts());
    const problem = this.#connected ? this.#state?.problem ?? '' : 'The page asks again by itself.';
    this.view.setProblem(this.#connected ? 'No frames' : 'No connection to tarnvod view', problem);
    this.#draw(clock());
  }

  #draw(time) {
    const now = this.#pausedAt ?? time;
    const { frames, lives, events } = this.#shown;
    this.view.show({
      frame: this.#frame,
      frames: frames.filter(({ at }) => now - at <= History.tail),
      lives,
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

  #facts() {
    if (!this.#state) {
      return [];
    }
    const { frames, framesPerSecond, interruptions } = this.#state;
    const facts = [`${framesPerSecond.toFixed(1)} frames/s`, this.#ageText(), counted(frames, 'frame')];
    if (interruptions > 0) {
      facts.push(counted(interruptions, 'interruption'));
    }
    if (this.#pausedAt !== null) {
      facts.push(`paused, ${counted(this.#passed, 'frame')} since`);
    }
    return facts;
  }

  #ageText() {
    const now = clock();
    const told = this.#state.secondsSinceFrame;
    const ages = [];
    if (told !== null) {
      ages.push(told + now - this.#stateAt);
    }
    if (this.#seenAt !== null) {
      ages.push(now - this.#seenAt);
    }
    return ages.length > 0 ? `last frame ${seconds(Math.min(...ages))} ago` : 'no frame yet';
  }
}

/** The page while it shows cameras. */
export class LivePage {
  static #refreshPeriod = 250;
  static #retryPeriod = 2000;

  #cameras = new Map();
  #filters = new ClassFilters(() => this.#cameras.forEach((camera) => camera.view.redraw()));
  #dropped = 0;
  #newsShown = '';
  #paused = false;

  constructor(setup) {
    byId('source').textContent = 'live';
    for (const number of setup.cameras) {
      this.#cameras.set(number, new LiveCamera(number, setup, this.#filters));
    }
    byId('cameras').append(...[...this.#cameras.values()].map(({ view }) => view.section));
    setInterval(() => this.#cameras.forEach((camera) => camera.refresh()), LivePage.#refreshPeriod);
    this.#connect();
  }

  togglePause() {
    this.#paused = !this.#paused;
    byId('pause').textContent = this.#paused ? 'Resume' : 'Pause';
    this.#cameras.forEach((camera) => camera.setPaused(this.#paused));
  }

  #connect() {
    const source = new EventSource('events');
    source.addEventListener('frame', ({ data }) => this.#addFrame(JSON.parse(data)));
    source.addEventListener('state', ({ data }) => this.#setState(JSON.parse(data)));
    source.addEventListener('dropped', ({ data }) => this.#tellDropped(JSON.parse(data).dropped));
    source.addEventListener('error', () => this.#loseConnection(source));
  }

  #addFrame(frame) {
    this.#filters.offer(frame.detections.map(({ className }) => className));
    this.#cameras.get(frame.camera).add(frame);
  }

  #setState({ cameras, news }) {
    this.#setConnection('receiving', 'connected');
    cameras.forEach((state) => this.#cameras.get(state.camera).setState(state));
    const texts = JSON.stringify(news.map(({ text }) => text));
    if (texts !== this.#newsShown) {
      this.#newsShown = texts;
      byId('news-section').hidden = news.length === 0;
      const now = clock();
      listEntries(byId('news'), news.map(({ secondsAgo, text }) => ({ when: clockText(now - secondsAgo), text })).reverse());
    }
  }

  #tellDropped(count) {
    this.#dropped = count;
    this.#setConnection('receiving', 'connected');
  }

  /** A browser tries again by itself unless it was refused. */
  #loseConnection(source) {
    this.#setConnection('lost', 'not connected');
    this.#cameras.forEach((camera) => camera.loseConnection());
    if (source.readyState === EventSource.CLOSED) {
      setTimeout(() => this.#connect(), LivePage.#retryPeriod);
    }
  }

  #setConnection(state, text) {
    const pill = byId('connection');
    const whole = this.#dropped > 0 ? `${text}, ${counted(this.#dropped, 'frame')} dropped: too slow here` : text;
    if (pill.textContent !== whole) {
      pill.textContent = whole;
      pill.dataset.state = state;
    }
  }
}
