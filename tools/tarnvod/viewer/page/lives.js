// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

import { boxOf, footOf } from './geometry.js';

/** An object that was away for longer is seen anew. In seconds. */
export const longestGap = 1;

/** How long an object that was seen live keeps its row, while the service may still tell that it is deleted. In seconds. */
const deletionPatience = 6;

/** Rows of a timeline: what is there at the same time stands in different ones. */
export class Lanes {
  #lanes = [];

  /** Gives the life the first row that is free when it begins. A life keeps its row to its `end`. */
  place(life) {
    const free = this.#lanes.findIndex((other) => other.end + longestGap < life.first);
    life.lane = free < 0 ? this.#lanes.length : free;
    this.#lanes[life.lane] = life;
  }
}

/** What one camera has shown of late, by the page's clock in seconds. */
export class History {
  /** How much of the past a timeline shows. */
  static window = 60;
  /** How much of the past a tail shows. */
  static tail = 3;

  #lanes = new Lanes();
  #current = new Map();
  frames = [];
  lives = [];
  events = [];

  add(frame, at) {
    this.frames.push({ frame, at });
    for (const detection of frame.detections) {
      this.#see(detection, at);
    }
    for (const event of frame.events) {
      this.events.push({ ...event, at });
      this.#noteDeletion(event, at);
    }
    this.#forget(at);
  }

  /** As it is now, whatever comes later. */
  copy() {
    return {
      frames: [...this.frames],
      lives: this.lives.map((life) => ({ ...life })),
      events: [...this.events],
    };
  }

  #see({ objectId, className }, at) {
    const known = this.#current.get(objectId);
    if (known && at - known.last <= longestGap) {
      known.last = at;
      known.end = at + deletionPatience;
      return;
    }
    const life = { objectId, className, first: at, last: at, end: at + deletionPatience, lane: 0 };
    this.#lanes.place(life);
    this.#current.set(objectId, life);
    this.lives.push(life);
  }

  #noteDeletion({ action, objectId }, at) {
    const life = this.lives.findLast((each) => each.objectId === objectId);
    if (action === 'Delete' && life) {
      life.end = at;
    }
  }

  #forget(now) {
    this.frames = this.frames.filter(({ at }) => now - at <= History.tail);
    this.lives = this.lives.filter(({ last }) => now - last <= History.window);
    this.events = this.events.filter(({ at }) => now - at <= History.window);
    for (const [objectId, { last }] of this.#current) {
      if (now - last > longestGap) {
        this.#current.delete(objectId);
      }
    }
  }
}

/** The way of each object through these frames: its class, and its points in order. */
export function tailsOf(frames, boxes) {
  const tails = new Map();
  for (const { frame, at } of frames) {
    for (const detection of frame.detections) {
      const box = boxOf(detection, boxes);
      if (box) {
        const { objectId, className } = detection;
        const tail = tails.get(objectId) ?? { objectId, className, points: [] };
        tail.points.push({ ...footOf(box), at });
        tails.set(objectId, tail);
      }
    }
  }
  return [...tails.values()];
}
