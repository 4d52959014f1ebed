// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

import { readAddress, writeAddress } from './address.js';
import { CameraView } from './camera.js';
import { Filters } from './filters.js';
import { byId, counted, durationText, seconds } from './format.js';
import { FrameStore } from './frame_store.js';
import { Lanes, trailLength, Trails } from './history.js';
import { Selection } from './selection.js';

const camera = 1;

/** The tracks of a recording's objects, each in a row of the timeline. */
function placeTracks(objects, events) {
  const deletions = new Map(events.filter(({ action }) => action === 'Delete').map(({ objectId, at }) => [objectId, at]));
  const tracks = objects.map(({ objectId, className, firstSeconds: first, lastSeconds: last }) =>
    ({ objectId, className, first, last, end: Math.max(last, deletions.get(objectId) ?? last), lane: 0 }));
  tracks.sort((a, b) => a.first - b.first);
  const lanes = new Lanes();
  tracks.forEach((track) => lanes.place(track));
  return tracks;
}

/** The page while it shows a recording. */
export class RecordingPage {
  #setup;
  #overview;
  #times;
  #tracks;
  #events;
  #store = new FrameStore();
  #filters = new Filters(() => this.#choose());
  #selection = new Selection(() => this.#choose());
  #view;
  #index = 0;
  #playing = false;
  #playedFrom = { wall: 0, recording: 0 };
  #scrubber = byId('scrubber');

  constructor(setup, overview) {
    this.#setup = setup;
    this.#overview = overview;
    this.#times = overview.frameSeconds;
    this.#events = overview.eventList.map((event) => ({ ...event, at: this.#times[event.frame] }));
    this.#tracks = placeTracks(overview.objects, this.#events);
    const address = readAddress();
    this.#selection.text = address('object');
    this.#filters.parameters =
      { hide: address('hide'), status: address('status'), score: address('score'), attribute: address('attribute') };
    this.#view = new CameraView('Recording', camera, setup, this.#filters, this.#selection);
    this.#view.makeSeekable((time) => this.#seek(this.#indexAt(time)));
    this.#filters.offer(Object.keys(overview.detectionsByClass).sort());
    this.#fillPage();
    this.#listen();
    this.#seek(Number(address('frame')) || 0);
  }

  togglePause() {
    if (!this.#playing && this.#index === this.#times.length - 1) {
      this.#seek(0);
    }
    this.#playing = !this.#playing;
    byId('pause').textContent = this.#playing ? 'Pause' : 'Play';
    this.#markStart();
    this.#showSummary();
    if (this.#playing) {
      requestAnimationFrame(() => this.#advance());
    } else {
      this.#choose();
    }
  }

  clearSelection() {
    this.#selection.select();
  }

  #fillPage() {
    const { recording, frames, damage, damageCount } = this.#overview;
    byId('source').textContent = recording;
    byId('connection').hidden = true;
    byId('pause').textContent = 'Play';
    byId('cameras').append(this.#view.section);
    byId('player').hidden = false;
    this.#scrubber.max = Math.max(0, this.#times.length - 1);
    if (frames === 0) {
      this.#complain('The recording holds no frames.');
    } else if (this.#times.length < frames) {
      this.#complain(`Only the first ${counted(this.#times.length, 'frame')} of ${frames} are shown.`);
    }
    if (damageCount > 0) {
      const { file, offset, what } = damage[0];
      const more = damageCount > 1 ? ` (and ${damageCount - 1} more)` : '';
      this.#complain(`The recording is damaged: ${file}: offset ${offset}: ${what}${more}. ` +
        `${counted(frames, 'frame')} can be read.`);
    }
  }

  #listen() {
    this.#scrubber.addEventListener('input', () => this.#seek(Number(this.#scrubber.value)));
    this.#scrubber.addEventListener('change', () => this.#choose());
    byId('back').addEventListener('click', () => this.#step(-1));
    byId('forward').addEventListener('click', () => this.#step(1));
    byId('previous-event').addEventListener('click', () => this.#stepToEvent(-1));
    byId('next-event').addEventListener('click', () => this.#stepToEvent(1));
    byId('speed').addEventListener('change', () => this.#markStart());
    document.addEventListener('keydown', (event) => this.#onKey(event));
  }

  #onKey(event) {
    const isTaken = event.target.matches('input, select') || event.ctrlKey || event.altKey || event.metaKey;
    if (isTaken) {
      return;
    }
    const steps = { ArrowLeft: -1, ArrowRight: 1, Home: -this.#times.length, End: this.#times.length };
    const step = steps[event.key];
    if (step !== undefined) {
      event.preventDefault();
      this.#step(event.shiftKey ? 10 * step : step);
    } else if (event.key === 'n' || event.key === 'p') {
      this.#stepToEvent(event.key === 'n' ? 1 : -1);
    }
  }

  #step(count) {
    this.#seek(this.#index + count);
    this.#choose();
  }

  #stepToEvent(direction) {
    const next = direction > 0
      ? this.#events.find(({ frame }) => frame > this.#index)
      : this.#events.findLast(({ frame }) => frame < this.#index);
    if (next) {
      this.#seek(next.frame);
      this.#choose();
    }
  }

  /** The last frame that was there at this time. */
  #indexAt(time) {
    let [before, after] = [-1, this.#times.length];
    while (after - before > 1) {
      const middle = Math.floor((before + after) / 2);
      [before, after] = this.#times[middle] > time ? [before, middle] : [middle, after];
    }
    return before;
  }

  #seek(index) {
    this.#index = Math.max(0, Math.min(Math.floor(index), this.#times.length - 1));
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

  /** Redraws, and puts what is shown into the address. */
  #choose() {
    writeAddress({
      frame: this.#index > 0 ? this.#index : '',
      object: this.#selection.text,
      ...this.#filters.parameters,
    });
    this.#view.redraw();
  }

  async #show() {
    const index = this.#index;
    this.#showSummary();
    if (this.#times.length === 0) {
      return;
    }
    const now = this.#times[index];
    const first = Math.max(0, this.#indexAt(now - trailLength));
    try {
      const frames = await this.#store.between(first, index);
      if (index === this.#index) {
        this.#draw(frames, first, now);
      }
    } catch (error) {
      this.#complain(`Frame ${index + 1} cannot be read: ${error.message}`);
    }
  }

  #draw(frames, first, now) {
    const trails = new Trails(this.#setup.boxes);
    frames.forEach((frame, place) => trails.add(frame, this.#times[first + place]));
    const frame = frames.at(-1);
    this.#view.show({
      frame,
      trails,
      tracks: this.#tracks,
      events: this.#events,
      now,
      span: { from: 0, to: Math.max(this.#overview.seconds, 0.1), zero: 0, cursor: now },
      timeText: durationText,
    });
    this.#view.redraw();
    this.#view.section.dataset.frame = this.#index;
    if (frame.omittedBytes !== undefined) {
      this.#complain(`Frame ${this.#index + 1} has ${frame.omittedBytes} bytes, which are too many to be shown.`);
    }
  }

  #showSummary() {
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
