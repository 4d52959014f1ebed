// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

import { readAddress, writeAddress } from './address.js';
import { clock, clockText, ServerClock } from './clock.js';
import { Filters } from './filters.js';
import { byId, counted, listEntries } from './format.js';
import { LiveCamera } from './live_camera.js';
import { LivePlayer } from './live_player.js';
import { Selection } from './selection.js';
import { Tools } from './tools.js';
import { Wall } from './wall.js';

/** The page while it shows cameras. */
export class LivePage {
  static #refreshPeriod = 250;
  static #retryPeriod = 2000;

  #cameras = new Map();
  #filters = new Filters(() => this.#choose());
  #selection = new Selection(() => this.#choose());
  #serverClock = new ServerClock();
  #past = null;
  #statesSeen = 0;
  #dropped = 0;
  #statusChangesShown = '';
  #tools = new Tools(this.#filters, this.#selection, () => this.#choose());
  #wall;
  #player;

  constructor(setup) {
    byId('source').textContent = 'live';
    const address = readAddress();
    this.#selection.text = address('object');
    this.#filters.parameters =
      { hide: address('hide'), status: address('status'), score: address('score'), attribute: address('attribute') };
    for (const number of setup.cameras) {
      this.#cameras.set(number, new LiveCamera(number, setup, this.#filters, this.#selection, this.#tools));
    }
    this.#tools.cameras = [...this.#cameras.values()];
    this.#restoreTools(address);
    byId('speeds').hidden = true;
    this.#wall = new Wall(new Map([...this.#cameras].map(([number, { view }]) => [number, view])), () => this.#choose());
    this.#wall.choose(Number(address('camera')));
    this.#player = new LivePlayer(() => [...this.#cameras.values()]);
    this.#cameras.forEach(({ view }) => view.makeSeekable((time) => this.#player.show(time)));
    setInterval(() => this.#refresh(), LivePage.#refreshPeriod);
    this.#connect();
    this.#paint();
  }

  get tools() {
    return this.#tools;
  }

  get player() {
    return this.#player;
  }

  /** Selects no object; or shows all cameras, when none was selected. */
  clearSelection() {
    if (this.#selection.text === '') {
      this.#wall.choose(null);
    } else {
      this.#selection.select();
    }
  }

  /** Once for each picture that the browser shows. */
  #paint() {
    this.#cameras.forEach((camera) => camera.paint());
    requestAnimationFrame(() => this.#paint());
  }

  #restoreTools(address) {
    this.#tools.parameters =
      { heat: address('heat'), follow: address('follow'), zoom: address('zoom'), shape: address('shape') };
  }

  #refresh() {
    this.#cameras.forEach((camera) => camera.refresh());
    this.#player.refresh();
  }

  #choose() {
    if (!this.#wall) {
      return; // the page is being opened
    }
    writeAddress({ camera: this.#wall.chosen ?? '', object: this.#selection.text, ...this.#filters.parameters, ...this.#tools.parameters });
    this.#cameras.forEach((camera) => camera.view.redraw());
  }

  #connect() {
    const source = new EventSource('events');
    const listen = (name, handle) => source.addEventListener(name, ({ data, lastEventId }) => {
      this.#serverClock.observe(Number(lastEventId));
      handle(JSON.parse(data), Number(lastEventId), data);
    });
    listen('frame', (frame, sent, text) => this.#addFrame(frame, sent, text));
    listen('state', (state) => this.#setState(state));
    listen('past', (past) => this.#setPast(past));
    listen('dropped', ({ dropped }) => this.#reportDropped(dropped));
    source.addEventListener('error', () => this.#loseConnection(source));
  }

  #addFrame(frame, sent, text) {
    this.#takeOverPast();
    this.#filters.offer(frame.detections.map(({ className }) => className));
    this.#cameras.get(frame.camera).add(frame, Math.min(clock(), this.#serverClock.toPage(sent)), text);
    frame.events.forEach((event) => this.#selection.follow(frame.camera, event));
  }

  /** The past waits for a message that has just been sent: the clocks are compared with it. */
  #setPast(past) {
    this.#past ??= past;
  }

  #takeOverPast() {
    const toPage = this.#serverClock.toPage;
    for (const { camera, tracks, events } of this.#past?.cameras ?? []) {
      this.#filters.offer(tracks.map(({ className }) => className));
      this.#cameras.get(camera).takeOver(
        tracks.map((track) => ({ ...track, first: toPage(track.first), last: toPage(track.last) })),
        events.map((event) => ({ ...event, at: toPage(event.at) })));
    }
    this.#past = { cameras: [] };
  }

  #setState({ cameras, statusChanges }) {
    this.#statesSeen += 1;
    if (this.#statesSeen > 1) {
      this.#takeOverPast();
    }
    this.#setConnection('receiving', 'connected');
    cameras.forEach((state) => this.#cameras.get(state.camera).setState(state));
    const texts = JSON.stringify(statusChanges.map(({ text }) => text));
    if (texts !== this.#statusChangesShown) {
      this.#statusChangesShown = texts;
      byId('status-changes-section').hidden = statusChanges.length === 0;
      const now = clock();
      listEntries(byId('status-changes'), statusChanges.map(({ secondsAgo, text }) => ({ when: clockText(now - secondsAgo), text })).reverse());
    }
  }

  #reportDropped(count) {
    this.#dropped = count;
    this.#setConnection('receiving', 'connected');
  }

  /** A browser reconnects unless it was refused. */
  #loseConnection(source) {
    this.#setConnection('lost', 'not connected');
    this.#cameras.forEach((camera) => camera.loseConnection());
    if (source.readyState === EventSource.CLOSED) {
      this.#explainRefusal();
      setTimeout(() => this.#connect(), LivePage.#retryPeriod);
    }
  }

  async #explainRefusal() {
    try {
      const answer = await fetch('events', { signal: AbortSignal.timeout(1000) });
      byId('notice').textContent = answer.status === 200 ? '' : await answer.text();
    } catch {
      byId('notice').textContent = '';
    }
    byId('notice').hidden = byId('notice').textContent === '';
  }

  #setConnection(state, text) {
    const pill = byId('connection');
    const whole = this.#dropped > 0 ? `${text}, ${counted(this.#dropped, 'frame')} dropped: this browser is too slow` : text;
    if (pill.textContent !== whole) {
      pill.textContent = whole;
      pill.dataset.state = state;
    }
    if (state === 'receiving') {
      byId('notice').hidden = true;
    }
  }
}
