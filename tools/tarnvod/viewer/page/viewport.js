// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

const mostEnlarged = 16;

/** Which part of a picture is seen. All places are shares of the picture's or the view's width and height. */
export class Viewport {
  #scale = 1;
  #x = 0;
  #y = 0;

  get scale() {
    return this.#scale;
  }

  /** Enlarges; what is at this place of the view stays there. */
  enlarge(factor, at = { x: 0.5, y: 0.5 }) {
    const fixed = this.toPicture(at);
    this.#scale = Math.min(Math.max(1, this.#scale * factor), mostEnlarged);
    this.#place(fixed.x - at.x / this.#scale, fixed.y - at.y / this.#scale);
  }

  /** Moves what is seen by shares of the view. */
  move(x, y) {
    this.#place(this.#x - x / this.#scale, this.#y - y / this.#scale);
  }

  /** Brings a place of the picture into the middle, as far as its edges allow. */
  centre({ x, y }) {
    this.#place(x - 0.5 / this.#scale, y - 0.5 / this.#scale);
  }

  showAll() {
    this.#scale = 1;
    this.#place(0, 0);
  }

  toView = ({ x, y, ...others }) => ({ ...others, x: (x - this.#x) * this.#scale, y: (y - this.#y) * this.#scale });

  toPicture = ({ x, y }) => ({ x: this.#x + x / this.#scale, y: this.#y + y / this.#scale });

  /** The box in the view; null stays null. */
  boxOf = (box) => box && {
    left: (box.left - this.#x) * this.#scale,
    top: (box.top - this.#y) * this.#scale,
    right: (box.right - this.#x) * this.#scale,
    bottom: (box.bottom - this.#y) * this.#scale,
  };

  /** Moves and enlarges an element as the picture is. */
  applyTo(element) {
    element.style.transformOrigin = '0 0';
    element.style.transform = `scale(${this.#scale}) translate(${-100 * this.#x}%, ${-100 * this.#y}%)`;
  }

  /** For the address; empty when all is seen. */
  get text() {
    return this.#scale === 1 ? '' : [this.#scale, this.#x, this.#y].map((each) => Number(each.toFixed(3))).join();
  }

  set text(value) {
    const numbers = value.split(',').map(Number);
    if (numbers.length === 3 && numbers.every(Number.isFinite)) {
      this.#scale = Math.min(Math.max(1, numbers[0]), mostEnlarged);
      this.#place(numbers[1], numbers[2]);
    }
  }

  #place(x, y) {
    const most = 1 - 1 / this.#scale;
    this.#x = Math.min(Math.max(0, x), most);
    this.#y = Math.min(Math.max(0, y), most);
  }
}
