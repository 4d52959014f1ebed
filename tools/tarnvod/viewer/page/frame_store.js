// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

import { fetchJson } from './answers.js';

/** Frames of a recording, in as many requests as it takes: an answer holds fewer where frames are large. */
async function fetchFrames(recording, first, count) {
  const frames = [];
  for (let isEnd = false; !isEnd && frames.length < count;) {
    const more = await fetchJson(`frames.json?recording=${recording}&first=${first + frames.length}&count=${count - frames.length}`);
    frames.push(...more);
    isEnd = more.length === 0;
  }
  return frames;
}

/** A recording's frames, fetched in pieces when they are needed; the latest pieces are kept. */
export class FrameStore {
  static #pieceSize = 100;
  static #piecesKept = 30;

  #recording;
  #length;
  #pieces = new Map();

  /** @param recording  its number, counted from 1; `length`: how many frames it has */
  constructor(recording, length) {
    this.#recording = recording;
    this.#length = length;
  }

  /** Gives the frames from one to another, both included. */
  async between(first, last) {
    const pieces = [];
    for (let piece = this.#pieceOf(first); piece <= this.#pieceOf(last); piece += 1) {
      pieces.push(this.#fetch(piece));
    }
    const offset = this.#pieceOf(first) * FrameStore.#pieceSize;
    return (await Promise.all(pieces)).flat().slice(first - offset, last - offset + 1);
  }

  #pieceOf(index) {
    return Math.floor(index / FrameStore.#pieceSize);
  }

  #fetch(piece) {
    const first = piece * FrameStore.#pieceSize;
    const count = Math.min(FrameStore.#pieceSize, this.#length - first);
    const frames = this.#pieces.get(piece) ?? fetchFrames(this.#recording, first, count);
    this.#pieces.delete(piece);
    this.#pieces.set(piece, frames);
    frames.catch(() => this.#pieces.delete(piece));
    if (this.#pieces.size > FrameStore.#piecesKept) {
      this.#pieces.delete(this.#pieces.keys().next().value);
    }
    return frames;
  }
}
