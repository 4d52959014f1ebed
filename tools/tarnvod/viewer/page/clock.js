// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

/** The page's clock, in seconds. */
export const clock = () => performance.now() / 1000;

/** A time of the page's clock as people read it. */
export const clockText = (at) => new Date(performance.timeOrigin + at * 1000).toLocaleTimeString();

/**
 * Translates the server's times into those of the page's clock: the message that took the least time on its way is taken
 * for one that took none.
 */
export class ServerClock {
  #offset = Infinity;

  /** Takes note of a message that the server sent at `sent`, in its milliseconds, and that arrives now. */
  observe(sent) {
    this.#offset = Math.min(this.#offset, clock() - sent / 1000);
  }

  toPage = (time) => time / 1000 + this.#offset;

  toServer = (time) => Math.round((time - this.#offset) * 1000);
}
