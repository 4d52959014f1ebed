// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

import { regionBetween } from './shapes.js';

const wheelFactor = 1.002;
/** A pointer that moves less was not meant to move. In units of the page. */
const leastMove = 4;

/** What pointer and wheel do to a picture: draw a shape, or enlarge and move it. */
export class PictureInput {
  #canvas;
  #viewport;
  #tools;
  #actions;
  #start = null;
  #last = null;
  #moved = false;

  /** @param actions  `changed`, and `drawn` with a shape and whether it is complete */
  constructor(canvas, viewport, tools, actions) {
    this.#canvas = canvas;
    this.#viewport = viewport;
    this.#tools = tools;
    this.#actions = actions;
    const { element } = canvas;
    element.addEventListener('wheel', (event) => this.#onWheel(event), { passive: false });
    element.addEventListener('pointerdown', (event) => this.#begin(event));
    element.addEventListener('pointermove', (event) => this.#start && this.#move(event));
    element.addEventListener('pointerup', (event) => this.#start && this.#end(event));
    element.addEventListener('click', (event) => this.#moved && event.stopImmediatePropagation());
  }

  #at = ({ offsetX, offsetY }) => ({ x: offsetX / this.#canvas.width, y: offsetY / this.#canvas.height });

  #onWheel(event) {
    if (event.ctrlKey) {
      event.preventDefault();
      this.#viewport.enlarge(wheelFactor ** -event.deltaY, this.#at(event));
      this.#actions.changed();
    }
  }

  #begin(event) {
    this.#canvas.element.setPointerCapture(event.pointerId);
    this.#start = { ...this.#at(event), left: event.offsetX, top: event.offsetY };
    this.#last = this.#start;
    this.#moved = false;
  }

  #move(event) {
    const here = this.#at(event);
    this.#moved ||= Math.hypot(event.offsetX - this.#start.left, event.offsetY - this.#start.top) >= leastMove;
    if (this.#tools.drawing !== null) {
      this.#actions.drawn(this.#shapeTo(here), false);
    } else if (this.#moved && this.#viewport.scale > 1) {
      this.#viewport.move(here.x - this.#last.x, here.y - this.#last.y);
      this.#actions.changed();
    }
    this.#last = here;
  }

  #end(event) {
    const here = this.#at(event);
    const isLine = this.#tools.drawing === 'line';
    if (this.#tools.drawing !== null && (isLine || this.#moved)) {
      this.#moved = true;
      this.#actions.drawn(this.#shapeTo(here), true);
    }
    this.#start = null;
  }

  #shapeTo(here) {
    const place = (at) => {
      const { x, y } = this.#viewport.toPicture(at);
      return { x: Math.min(Math.max(0, x), 1), y: Math.min(Math.max(0, y), 1) };
    };
    return this.#tools.drawing === 'line' ? [place(here).x] : regionBetween(place(this.#start), place(here));
  }
}
