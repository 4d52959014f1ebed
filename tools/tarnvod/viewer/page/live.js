// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

import { fetchJson } from './answers.js';
import { clock, clockText, ServerClock } from './clock.js';
import { byId, counted, listEntries } from './format.js';
import { History, trailLength } from './history.js';
import { LiveCamera } from './live_camera.js';
import { LivePlayer } from './live_player.js';
import { Page } from './page.js';

/** What the viewer keeps from this time of its clock on, in as many answers as it takes. */
async function fetchFramesSince(from) {
  const frames = [];
  for (let isComplete = false; !isComplete;) {
    const answer = await fetchJson(`past.json?from=${frames.length === 0 ? Math.max(0, from) : frames.at(-1).at + 1}`);
    frames.push(...answer.frames);
    isComplete = !answer.more;
  }
  return frames;
}

/** The page while it shows cameras. */
export class LivePage extends Page {
  static #refreshPeriod = 250;
  static #retryPeriod = 2000;

  #byNumber;
  #serverClock = new ServerClock();
  #past = null;
  #statesSeen = 0;
  #dropped = 0;
  #statusChangesShown = '';
  #isRefused = false;
  /** The moment that the address asks for, until it is shown, and the frames from there on. */
  #linked = null;
  #fetched = [];

  constructor(setup) {
    super({ from: -History.kept, to: 0 }, { from: -History.window, to: 0 });
    byId('source').textContent = 'live';
    byId('speeds').hidden = true;
    const cameras = setup.cameras.map((number) => new LiveCamera(number, setup, this));
    this.#byNumber = new Map(setup.cameras.map((number, place) => [number, cameras[place]]));
    this.open(cameras, new LivePlayer(cameras, this.timeWindow, () => this.changed()));
    setInterval(() => this.#refresh(), LivePage.#refreshPeriod);
    this.#begin();
    this.#paint();
  }

  /** A link to a moment needs the frames from it on; without one, those that come suffice. */
  async #begin() {
    if (/^\d+$/.test(this.address.at)) {
      this.#linked = Number(this.address.at);
      this.#fetched = await fetchFramesSince(this.#linked - 1000 * trailLength).catch(() => []);
    }
    this.#connect();
  }

  /** Once for each picture that the browser shows. */
  #paint() {
    this.cameras.forEach((camera) => camera.paint());
    requestAnimationFrame(() => this.#paint());
  }

  #refresh() {
    this.cameras.forEach((camera) => camera.refresh());
    this.player.refresh();
  }

  /** The members of the address that say which moment is shown. */
  moment() {
    if (this.#linked !== null) {
      return { at: this.#linked };
    }
    return { at: this.player.moment === null ? '' : this.#serverClock.toServer(this.player.moment) };
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
    this.#addFrameOf(frame, Math.min(clock(), this.#serverClock.toPage(sent)), text);
  }

  #addFrameOf(frame, at, text) {
    this.filters.offer(frame.detections.map(({ className }) => className));
    this.#byNumber.get(frame.camera).add(frame, at, text);
    frame.events.forEach((event) => this.selection.follow(frame.camera, event));
  }

  /** The past waits for a message that has just been sent: the clocks are compared with it. */
  #setPast(past) {
    this.#past ??= past;
  }

  #takeOverPast() {
    const toPage = this.#serverClock.toPage;
    if (this.#fetched.length > 0) {
      this.#fetched.forEach(({ frame, at }) => this.#addFrameOf(frame, toPage(at), JSON.stringify(frame)));
      this.#fetched = [];
      this.#past = { cameras: [] };
    }
    for (const { camera, tracks, events } of this.#past?.cameras ?? []) {
      this.filters.offer(tracks.map(({ className }) => className));
      this.#byNumber.get(camera).takeOver(
        tracks.map((track) => ({ ...track, first: toPage(track.first), last: toPage(track.last) })),
        events.map((event) => ({ ...event, at: toPage(event.at) })));
    }
    this.#past = { cameras: [] };
    this.#showLinked();
  }

  #showLinked() {
    if (this.#linked === null) {
      return;
    }
    const at = this.#serverClock.toPage(this.#linked);
    this.#linked = null;
    const oldest = Math.min(...this.cameras.map(({ times }) => times[0] ?? Infinity));
    if (oldest <= at && at <= clock()) {
      this.player.show(at);
    } else {
      this.complain(`The moment of the link, ${clockText(at)}, has been dropped; this is the live view.`);
      this.changed();
    }
  }

  #setState({ cameras, statusChanges }) {
    this.#statesSeen += 1;
    if (this.#statesSeen > 1) {
      this.#takeOverPast();
    }
    this.#setConnection('receiving', 'connected');
    cameras.forEach((state) => this.#byNumber.get(state.camera).setState(state));
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
    this.cameras.forEach((camera) => camera.loseConnection());
    if (source.readyState === EventSource.CLOSED) {
      this.#explainRefusal();
      setTimeout(() => this.#connect(), LivePage.#retryPeriod);
    }
  }

  async #explainRefusal() {
    try {
      const answer = await fetch('events', { signal: AbortSignal.timeout(1000) });
      this.#isRefused = true;
      this.complain(answer.status === 200 ? '' : await answer.text());
    } catch {
      this.complain('');
    }
  }

  #setConnection(state, text) {
    const pill = byId('connection');
    const whole = this.#dropped > 0 ? `${text}, ${counted(this.#dropped, 'frame')} dropped: this browser is too slow` : text;
    if (pill.textContent !== whole) {
      pill.textContent = whole;
      pill.dataset.state = state;
    }
    if (state === 'receiving' && this.#isRefused) {
      this.#isRefused = false;
      this.complain('');
    }
  }
}
