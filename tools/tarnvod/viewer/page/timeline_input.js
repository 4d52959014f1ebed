// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

import { make } from './format.js';

const wheelFactor = 1.002;

/** What the wheel does to a timeline: with ctrl it zooms where it points, with shift or sideways it moves. */
export class TimelineInput {
  #canvas;
  #timeWindow;

  constructor(canvas, timeWindow) {
    this.#canvas = canvas;
    this.#timeWindow = timeWindow;
    canvas.element.addEventListener('wheel', (event) => this.#onWheel(event), { passive: false });
  }

  #onWheel(event) {
    const sideways = event.deltaX !== 0 ? event.deltaX : event.shiftKey ? event.deltaY : 0;
    if (event.ctrlKey) {
      const { from, length } = this.#timeWindow;
      this.#timeWindow.zoom(wheelFactor ** -event.deltaY, from + (event.offsetX / this.#canvas.width) * length);
    } else if (sideways !== 0) {
      this.#timeWindow.move(sideways / this.#canvas.width);
    } else {
      return;
    }
    event.preventDefault();
  }
}

/** Buttons that do the same. */
export function timeButtons(title, timeWindow) {
  const button = (text, label, action) => {
    const element = make('button', { type: 'button', title: label, ariaLabel: `${title}: ${label}` }, text);
    element.addEventListener('click', action);
    return element;
  };
  return make('div', { className: 'time-buttons' },
    button('◂', 'Earlier', () => timeWindow.move(-0.5)),
    button('−', 'More time', () => timeWindow.zoom(0.5)),
    button('Reset', 'Reset the time', () => timeWindow.showUsual()),
    button('+', 'Less time', () => timeWindow.zoom(2)),
    button('▸', 'Later', () => timeWindow.move(0.5)));
}
