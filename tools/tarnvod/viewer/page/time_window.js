// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

/** In seconds; less would be a few frames. */
const shortest = 2;

/** Which part of the time the timelines show. Times are in seconds from their zero: a recording's start, or now. */
export class TimeWindow {
  #whole;
  #usual;
  #changed;
  from;
  to;

  /**
   * @param whole  `from` and `to`, between which it can be; `usual`: what it shows at first
   * @param changed  called when it shows another part
   */
  constructor(whole, usual = whole, changed = () => {}) {
    this.#whole = whole;
    this.#usual = usual;
    this.#changed = changed;
    Object.assign(this, usual);
  }

  get length() {
    return this.to - this.from;
  }

  /** Shows a part that is this many times as short; the time `at` stays where it is. */
  zoom(factor, at = this.#middle()) {
    const longest = this.#whole.to - this.#whole.from;
    const length = Math.min(longest, Math.max(Math.min(shortest, longest), this.length / factor));
    this.#place(at - ((at - this.from) / this.length) * length, length);
  }

  /** Moves by a share of what is shown. */
  move(share) {
    this.#place(this.from + share * this.length, this.length);
  }

  /** Moves to where this time can be seen, if it cannot. */
  reveal(at) {
    if (at < this.from || at > this.to) {
      this.#place(at - 0.1 * this.length, this.length);
    }
  }

  showUsual() {
    this.#place(this.#usual.from, this.#usual.to - this.#usual.from);
  }

  /** "FROM,TO" for the address; empty for what is shown usually. */
  get text() {
    return this.from === this.#usual.from && this.to === this.#usual.to ? '' :
      [this.from, this.to].map((each) => Number(each.toFixed(1))).join();
  }

  set text(value) {
    const [from, to, ...more] = value.split(',').map(Number);
    if (more.length === 0 && to > from) {
      this.#set(from, to - from);
      this.zoom(1);
    }
  }

  /** The end stays where it is at the end of the time, and the middle elsewhere. */
  #middle() {
    return this.to === this.#whole.to && this.#usual.from !== this.#whole.from ? this.to : (this.from + this.to) / 2;
  }

  #place(from, length) {
    const before = [this.from, this.to];
    this.#set(from, length);
    if (this.from !== before[0] || this.to !== before[1]) {
      this.#changed();
    }
  }

  #set(from, length) {
    this.from = Math.max(this.#whole.from, Math.min(from, this.#whole.to - length));
    this.to = Math.min(this.#whole.to, this.from + length);
  }
}
