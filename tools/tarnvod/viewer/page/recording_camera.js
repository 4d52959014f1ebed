// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

import { CameraView } from './camera.js';
import { counted, durationText, lastNotAfter } from './format.js';
import { FrameStore } from './frame_store.js';
import { Lanes, trailLength, Trails } from './history.js';

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
  #wanted = 0;
  times;
  events;
  view;

  /** @param complain  called with a sentence about what cannot be shown */
  constructor(number, title, setup, overview, filters, selection, complain) {
    this.#boxes = setup.boxes;
    this.#overview = overview;
    this.#complain = complain;
    this.#store = new FrameStore(number);
    this.times = overview.frameSeconds;
    this.events = overview.eventList.map((event) => ({ ...event, at: this.times[event.frame] }));
    this.#tracks = placeTracks(overview.objects, this.events);
    this.view = new CameraView(title, number, setup, filters, selection);
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

  /** Shows the frame of this time, on a timeline of this length. In seconds. */
  async show(now, duration) {
    if (this.times.length === 0) {
      return;
    }
    const index = Math.max(0, lastNotAfter(this.times, now));
    const first = Math.max(0, lastNotAfter(this.times, this.times[index] - trailLength));
    this.#wanted = index;
    try {
      const frames = await this.#store.between(first, index);
      if (index === this.#wanted) {
        this.#draw(frames, first, now, duration);
      }
    } catch (error) {
      this.#complain(`Frame ${index + 1} cannot be read: ${error.message}`);
    }
  }

  #draw(frames, first, now, duration) {
    const trails = new Trails(this.#boxes);
    frames.forEach((frame, place) => trails.add(frame, this.times[first + place]));
    const frame = frames.at(-1);
    this.view.show({
      frame,
      trails,
      tracks: this.#tracks,
      events: this.events,
      now,
      span: { from: 0, to: duration, zero: 0, cursor: now },
      timeText: durationText,
    });
    this.view.redraw();
    this.view.section.dataset.frame = this.#wanted;
    if (frame.omittedBytes !== undefined) {
      this.#complain(`Frame ${this.#wanted + 1} has ${frame.omittedBytes} bytes, which are too many to be shown.`);
    }
  }

  #reportProblems() {
    const { frames, damage, damageCount } = this.#overview;
    if (frames === 0) {
      this.view.setProblem('Nothing to show', 'The recording holds no frames.');
      this.#complain('The recording holds no frames.');
    } else if (this.times.length < frames) {
      this.#complain(`Only the first ${counted(this.times.length, 'frame')} of ${frames} are shown.`);
    }
    if (damageCount > 0) {
      const { file, offset, what } = damage[0];
      const more = damageCount > 1 ? ` (and ${damageCount - 1} more)` : '';
      this.#complain(`The recording is damaged: ${file}: offset ${offset}: ${what}${more}. ` +
        `${counted(frames, 'frame')} can be read.`);
    }
  }
}
