// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

import { CameraView } from './camera.js';
import { counted, durationText, lastNotAfter } from './format.js';
import { FrameStore } from './frame_store.js';
import { HeatMap } from './heat.js';
import { Lanes, trailLength, Trails } from './history.js';

/** Frames are fetched in pieces of so many. */
const piece = 100;
/** The frames whose objects are saved from the page. */
const mostSaved = 20_000;

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

/** A recording that is seen: its frames are fetched when they are shown. */
export class RecordingCamera {
  #boxes;
  #overview;
  #tracks;
  #store;
  #complain;
  #page;
  #isCutShown = false;
  #heat;
  #heated = 0;
  #isHeating = false;
  #wanted = 0;
  times;
  events;
  view;

  /** @param complain  called with a sentence about what cannot be shown */
  constructor(number, title, setup, overview, page, complain) {
    this.#boxes = setup.boxes;
    this.#overview = overview;
    this.#complain = complain;
    this.#store = new FrameStore(number, overview.frameSeconds.length);
    this.times = overview.frameSeconds;
    this.events = overview.eventList.map((event) => ({ ...event, at: this.times[event.frame] }));
    this.#tracks = placeTracks(overview.objects, this.events);
    this.view = new CameraView(title, number, setup, page);
    this.#page = page;
    this.#heat = new HeatMap(setup.boxes);
    this.#reportProblems();
  }

  /** In seconds. */
  get duration() {
    return Math.max(this.#overview.seconds, 0.1);
  }

  setPlaying(isPlaying) {
    const summary = [`${this.#overview.framesPerSecond.toFixed(1)} frames/s`, counted(this.#overview.objects.length, 'object')];
    this.view.setState(isPlaying ? 'receiving' : 'paused', isPlaying ? 'playing' : 'paused', summary);
  }

  /** Shows the frame of this time, in seconds. */
  async show(now) {
    if (this.times.length === 0) {
      return;
    }
    const index = Math.max(0, lastNotAfter(this.times, now));
    const first = Math.max(0, lastNotAfter(this.times, this.times[index] - trailLength));
    this.#wanted = index;
    try {
      const frames = await this.#store.between(first, index);
      if (index === this.#wanted) {
        this.#draw(frames, first, now);
      }
    } catch (error) {
      this.#complain(`Frame ${index + 1} cannot be read: ${error.message}`);
    }
  }

  #draw(frames, first, now) {
    const trails = new Trails(this.#boxes);
    frames.forEach((frame, place) => trails.add(frame, this.times[first + place]));
    const frame = frames.at(-1);
    this.view.show({
      frame,
      trails,
      tracks: this.#tracks,
      events: this.events,
      now,
      heat: this.#heat,
      zero: 0,
      cursor: now,
      timeText: durationText,
    });
    this.view.redraw();
    this.view.section.dataset.frame = this.#wanted;
    if (frame.omittedBytes !== undefined) {
      this.#complain(`Frame ${this.#wanted + 1} has ${frame.omittedBytes} bytes, which are too many to be shown.`);
    }
  }

  /** Draws everything; counts what the heat map shows, when it is shown first. */
  refresh() {
    this.view.redraw();
    if (this.#isCutShown) {
      this.view.showCopy(this.#cutText());
    }
    if (this.#page.tools.isHeat && !this.#isHeating && this.#heated < this.times.length) {
      this.#isHeating = true;
      this.#heatUp().catch((error) => this.#complain(`The heat map is not complete: ${error.message}`))
        .finally(() => { this.#isHeating = false; });
    }
  }

  async #heatUp() {
    while (this.#page.tools.isHeat && this.#heated < this.times.length) {
      const frames = await this.#store.between(this.#heated, Math.min(this.#heated + piece, this.times.length) - 1);
      frames.forEach((frame) => this.#heat.add(frame));
      this.#heated += frames.length;
      this.view.section.dataset.heated = this.#heated;
      this.view.drawPicture();
    }
  }

  /** All frames, each with its time `at`; of a long recording, the first. */
  async framesToSave() {
    const count = Math.min(this.times.length, mostSaved);
    if (count < this.times.length) {
      this.#complain(`Only the first ${mostSaved} frames are saved; "tarnvod export" saves all.`);
    }
    const saved = [];
    while (saved.length < count) {
      const frames = await this.#store.between(saved.length, Math.min(saved.length + piece, count) - 1);
      frames.forEach((frame) => saved.push({ frame, at: this.times[saved.length] }));
    }
    return saved;
  }

  /** What saved times count from. */
  zero = 0;

  /** Shows the command that makes a recording of what the timeline shows. */
  showCut() {
    this.view.onCopyRemoved(() => { this.#isCutShown = false; });
    this.#isCutShown = true;
    this.refresh();
  }

  #cutText() {
    const quoted = (text) => (/^[\w./+-]+$/.test(text) ? text : `'${text.replaceAll("'", "'\\''")}'`);
    const { from, to } = this.#page.timeWindow;
    const end = to < this.duration ? ` --to ${to.toFixed(1)}` : '';
    return `tarnvod cut ${quoted(this.#overview.recording)} --from ${from.toFixed(1)}${end} --output part`;
  }

  #reportProblems() {
    const { frames, damage, damageCount } = this.#overview;
    const problems = [];
    if (frames === 0) {
      this.view.setProblem('Nothing to show', 'The recording holds no frames.');
      problems.push('The recording holds no frames.');
    } else if (this.times.length < frames) {
      problems.push(`Only the first ${counted(this.times.length, 'frame')} of ${frames} are shown.`);
    }
    if (damageCount > 0) {
      const { file, offset, what } = damage[0];
      const more = damageCount > 1 ? ` (and ${damageCount - 1} more)` : '';
      problems.push(`The recording is damaged: ${file}: offset ${offset}: ${what}${more}. ` +
        `${counted(frames, 'frame')} can be read.`);
    }
    if (problems.length > 0) {
      this.#complain(problems.join(' '));
    }
  }
}
