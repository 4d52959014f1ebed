// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

import { CameraView } from './camera.js';
import { ClassFilters } from './filters.js';
import { byId, counted, seconds } from './format.js';
import { History, Lanes } from './lives.js';

const busy = 503;
const busyPause = 200;
const pause = (milliseconds) => new Promise((resolve) => setTimeout(resolve, milliseconds));

export async function fetchJson(path) {
  const response = await fetch(path);
  if (response.status === busy) {
    await pause(busyPause);
    return fetchJson(path);
  }
  if (!response.ok) {
    throw new Error(await response.text());
  }
  return response.json();
}

/** Frames of a recording, in as many requests as it takes: an answer holds fewer where frames are large. */
async function fetchFrames(first, count) {
  const frames = [];
  for (let isEnd = false; !isEnd && frames.length < count;) {
    const more = await fetchJson(`frames.json?first=${first + frames.length}&count=${count - frames.length}`);
    frames.push(...more);
    isEnd = more.length === 0;
  }
  return frames;
}

/** A recording's frames, fetched in pieces when they are needed; the latest pieces are kept. */
class FrameStore {
  static #pieceSize = 100;
  static #piecesKept = 30;

  #pieces = new Map();

  /** Gives the frames from one to another, both included. */
  async between(first, last) {
    const frames = [];
    for (let piece = this.#pieceOf(first); piece <= this.#pieceOf(last); piece += 1) {
      frames.push(...await this.#fetch(piece));
    }
    const offset = this.#pieceOf(first) * FrameStore.#pieceSize;
    return frames.slice(first - offset, last - offset + 1);
  }

  #pieceOf(index) {
    return Math.floor(index / FrameStore.#pieceSize);
  }

  #fetch(piece) {
    const known = this.#pieces.get(piece);
    const size = FrameStore.#pieceSize;
    const frames = known ?? fetchFrames(piece * size, size);
    this.#pieces.delete(piece);
    this.#pieces.set(piece, frames);
    frames.catch(() => this.#pieces.delete(piece));
    if (this.#pieces.size > FrameStore.#piecesKept) {
      this.#pieces.delete(this.#pieces.keys().next().value);
    }
    return frames;
  }
}

/** The page while it shows a recording. */
export class RecordingPage {
  #overview;
  #times;
  #lives;
  #events;
  #store = new FrameStore();
  #filters = new ClassFilters(() => this.#view.redraw());
  #view;
  #index = 0;
  #playing = false;
  #playedFrom = { wall: 0, recording: 0 };
  #scrubber = byId('scrubber');

  constructor(setup, overview) {
    this.#overview = overview;
    this.#times = overview.frameSeconds;
    this.#events = overview.eventList.map((event) => ({ ...event, at: this.#times[event.frame] }));
    this.#lives = this.#placeLives(overview.objects);
    this.#view = new CameraView('Recording', setup, this.#filters);
    this.#view.section.dataset.camera = '1';
    this.#view.makeSeekable((time) => this.#seek(this.#indexAt(time)));
    this.#filters.offer(Object.keys(overview.detectionsByClass).sort());
    this.#fillPage();
    this.#listen();
    this.#seek(0);
  }

  togglePause() {
    if (!this.#playing && this.#index === this.#times.length - 1) {
      this.#seek(0);
    }
    this.#playing = !this.#playing;
    byId('pause').textContent = this.#playing ? 'Pause' : 'Play';
    this.#markStart();
    this.#showFacts();
    if (this.#playing) {
      requestAnimationFrame(() => this.#advance());
    }
  }

  #placeLives(objects) {
    const lanes = new Lanes();
    const deletions = new Map(this.#events.filter(({ action }) => action === 'Delete')
      .map(({ objectId, at }) => [objectId, at]));
    const lives = objects.map(({ objectId, className, firstSeconds: first, lastSeconds: last }) =>
      ({ objectId, className, first, last, end: Math.max(last, deletions.get(objectId) ?? last), lane: 0 }));
    lives.sort((a, b) => a.first - b.first);
    lives.forEach((life) => lanes.place(life));
    return lives;
  }

  #fillPage() {
    const { recording, frames, damage, damageCount } = this.#overview;
    if (this.#times.length < frames) {
      this.#complain(`Only the first ${counted(this.#times.length, 'frame')} of ${frames} are shown.`);
    }
    byId('source').textContent = recording;
    byId('connection').hidden = true;
    byId('pause').textContent = 'Play';
    byId('cameras').append(this.#view.section);
    byId('player').hidden = false;
    this.#scrubber.max = Math.max(0, this.#times.length - 1);
    if (damageCount > 0) {
      const { file, offset, what } = damage[0];
      const more = damageCount > 1 ? ` (and ${damageCount - 1} more)` : '';
      this.#complain(`${file}: offset ${offset}: ${what}${more}; what is shown is what could be read, of ${counted(frames, 'frame')}`);
    }
  }

  #listen() {
    this.#scrubber.addEventListener('input', () => this.#seek(Number(this.#scrubber.value)));
    byId('back').addEventListener('click', () => this.#step(-1));
    byId('forward').addEventListener('click', () => this.#step(1));
    byId('speed').addEventListener('change', () => this.#markStart());
    document.addEventListener('keydown', (event) => this.#onKey(event));
  }

  #onKey(event) {
    const steps = { ArrowLeft: -1, ArrowRight: 1, Home: -this.#times.length, End: this.#times.length };
    const step = steps[event.key];
    const isTaken = event.target.matches('input, select') || event.ctrlKey || event.altKey || event.metaKey;
    if (step !== undefined && !isTaken) {
      event.preventDefault();
      this.#step(event.shiftKey ? 10 * step : step);
    }
  }

  #step(count) {
    this.#seek(this.#index + count);
  }

  /** The last frame that was there at this time. */
  #indexAt(time) {
    const after = this.#times.findIndex((each) => each > time);
    return (after < 0 ? this.#times.length : after) - 1;
  }

  #seek(index) {
    this.#index = Math.min(Math.max(0, index), this.#times.length - 1);
    this.#markStart();
    this.#show();
  }

  /** From here on the recording's time goes on, as fast as was chosen. */
  #markStart() {
    this.#playedFrom = { wall: performance.now(), recording: this.#times[this.#index] ?? 0 };
  }

  #advance() {
    if (!this.#playing) {
      return;
    }
    const elapsed = ((performance.now() - this.#playedFrom.wall) / 1000) * Number(byId('speed').value);
    const index = this.#indexAt(this.#playedFrom.recording + elapsed);
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

  async #show() {
    const index = this.#index;
    this.#showFacts();
    if (this.#times.length === 0) {
      return;
    }
    const now = this.#times[index];
    const first = this.#times.findIndex((time) => now - time <= History.tail);
    try {
      const frames = await this.#store.between(first, index);
      if (index === this.#index) {
        this.#draw(frames.map((frame, place) => ({ frame, at: this.#times[first + place] })), now);
      }
    } catch (error) {
      this.#complain(`Frame ${index + 1} cannot be read: ${error.message}`);
    }
  }

  #draw(frames, now) {
    this.#view.show({
      frame: frames.at(-1).frame,
      frames,
      lives: this.#lives,
      events: this.#events,
      now,
      span: { from: 0, to: Math.max(this.#overview.seconds, 0.1), zero: 0, cursor: now },
      timeText: seconds,
    });
    this.#view.section.dataset.frame = this.#index;
  }

  #showFacts() {
    const { seconds: duration, framesPerSecond } = this.#overview;
    const place = `frame ${this.#times.length === 0 ? 0 : this.#index + 1} of ${this.#times.length}`;
    const time = `${(this.#times[this.#index] ?? 0).toFixed(1)} of ${seconds(duration)}`;
    this.#scrubber.value = this.#index;
    this.#scrubber.setAttribute('aria-valuetext', `${place}, ${time}`);
    byId('position').textContent = `${place} · ${time}`;
    this.#view.setState(this.#playing ? 'receiving' : 'paused', this.#playing ? 'playing' : 'paused',
      [`${framesPerSecond.toFixed(1)} frames/s`, counted(this.#overview.objects.length, 'object')]);
  }

  #complain(text) {
    byId('notice').textContent = text;
    byId('notice').hidden = false;
  }
}
