// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

import { boxOf, footOf } from './boxes.js';

/** An object that was away for longer starts a new track. In seconds. */
export const longestGap = 1;

/** How much of the past a trail shows. In seconds. */
export const trailLength = 3;

/** How long a live object keeps its row, as the service may still report that it is deleted. In seconds. */
const deletionPatience = 6;

/** Rows of a timeline: tracks of the same time are in different ones while there are rows. */
export class Lanes {
  /** More would be lower than a pixel each. */
  static most = 150;

  #lanes = [];
  #shared = 0;

  /** Gives the track the first row that is free when it begins. A track keeps its row to its `end`. */
  place(track) {
    const free = this.#lanes.findIndex((other) => other.end + longestGap < track.first);
    track.lane = free < 0 ? this.#next() : free;
    this.#lanes[track.lane] = track;
  }

  /** A new row; when there are enough, each of them in turn. */
  #next() {
    if (this.#lanes.length < Lanes.most) {
      return this.#lanes.length;
    }
    this.#shared = (this.#shared + 1) % Lanes.most;
    return this.#shared;
  }
}

/** The trails of objects: their class, and where they stood, in order. */
export class Trails {
  #boxes;
  #trails = new Map();

  constructor(boxes) {
    this.#boxes = boxes;
  }

  add(frame, at) {
    for (const detection of frame.detections) {
      const box = boxOf(detection, this.#boxes);
      if (box) {
        this.#of(detection).points.push({ ...footOf(box), at });
      }
    }
  }

  /** Those of the last seconds before `now`. */
  until(now) {
    const recent = ({ at }) => at <= now && now - at <= trailLength;
    return [...this.#trails.values()].map((trail) => ({ ...trail, points: trail.points.filter(recent) }))
      .filter(({ points }) => points.length > 1);
  }

  /** Forgets what is older than a trail at the time `now`. */
  forget(now) {
    for (const [objectId, trail] of this.#trails) {
      const kept = trail.points.findIndex(({ at }) => now - at <= trailLength);
      trail.points.splice(0, kept < 0 ? trail.points.length : kept);
      if (trail.points.length === 0) {
        this.#trails.delete(objectId);
      }
    }
  }

  #of({ objectId, className }) {
    let trail = this.#trails.get(objectId);
    if (!trail) {
      trail = { objectId, className, points: [] };
      this.#trails.set(objectId, trail);
    }
    return trail;
  }
}

/** What one camera has shown recently, by the page's clock in seconds. */
export class History {
  /** How much of the past a timeline shows. */
  static window = 60;

  /** How much of the past is kept, to go back to. */
  static kept = 300;

  #lanes = new Lanes();
  #current = new Map();
  trails;
  tracks = [];
  events = [];

  constructor(boxes) {
    this.trails = new Trails(boxes);
  }

  add(frame, at) {
    this.trails.add(frame, at);
    for (const detection of frame.detections) {
      this.#see(detection, at);
    }
    for (const event of frame.events) {
      this.#addEvent({ ...event, at });
    }
  }

  /** Takes over what was there before this page: tracks and events, with times of the page's clock. */
  takeOver(tracks, events) {
    for (const { objectId, className, first, last } of tracks) {
      this.#see({ objectId, className }, first).last = last;
    }
    this.tracks.forEach((track) => { track.end = track.last + deletionPatience; });
    events.forEach((event) => this.#addEvent(event));
  }

  /** The tracks and events as they are, whatever comes later. */
  copy() {
    return { tracks: this.tracks.map((track) => ({ ...track })), events: [...this.events] };
  }

  forget(now) {
    this.trails.forget(now);
    this.tracks = this.tracks.filter(({ last }) => now - last <= History.kept);
    this.events = this.events.filter(({ at }) => now - at <= History.kept);
    for (const [objectId, { last }] of this.#current) {
      if (now - last > longestGap) {
        this.#current.delete(objectId);
      }
    }
  }

  #see({ objectId, className }, at) {
    const known = this.#current.get(objectId);
    if (known && at - known.last <= longestGap) {
      known.last = at;
      known.end = at + deletionPatience;
      return known;
    }
    const track = { objectId, className, first: at, last: at, end: at + deletionPatience, lane: 0 };
    this.#lanes.place(track);
    this.#current.set(objectId, track);
    this.tracks.push(track);
    return track;
  }

  #addEvent(event) {
    this.events.push(event);
    const track = this.tracks.findLast((each) => each.objectId === event.objectId);
    if (event.action === 'Delete' && track) {
      track.end = event.at;
    }
  }
}
