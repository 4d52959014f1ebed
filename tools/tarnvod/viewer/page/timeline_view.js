// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

import { Canvas } from './canvas.js';
import { make } from './format.js';
import { drawTimeline } from './timeline.js';
import { timeButtons, TimelineInput } from './timeline_input.js';

const descriptions = {
  tracks: 'tracks and events of objects; the list below names the latest events',
  density: 'how many objects of each class there were at a time',
};

/** A camera's timeline, with its legend and buttons. */
export class TimelineView {
  #title;
  #timeWindow;
  #moment = null;
  #shown = '';
  #legend = make('p', { className: 'legend' });
  #box;
  canvas;
  element;
  /** The bars that are drawn, each with its object's number and its area. */
  bars = [];

  /** @param resized  called when there is another size to draw for */
  constructor(title, timeWindow, resized) {
    this.#title = title;
    this.#timeWindow = timeWindow;
    this.canvas = new Canvas(resized);
    this.canvas.element.setAttribute('role', 'img');
    this.#box = make('div', {}, this.canvas.element);
    this.element = make('div', { className: 'past' }, this.#box,
      make('div', { className: 'under-timeline' }, this.#legend, timeButtons(title, timeWindow)));
    new TimelineInput(this.canvas, timeWindow);
  }

  /** Draws a moment: its `tracks` and `events`, and the `cursor` and `zero` of its time. */
  show(moment, choice) {
    this.#moment = moment;
    const { bars, legend, kind } = drawTimeline(this.canvas, { ...moment, span: this.#span() }, choice);
    this.bars = bars;
    this.#describe(kind, legend);
  }

  /** Calls back with the time that is pointed at. */
  makeSeekable(seek) {
    this.#box.classList.add('seekable');
    const { element } = this.canvas;
    const seekTo = (event) => {
      const { from, to } = this.#span();
      seek(from + (event.offsetX / this.canvas.width) * (to - from));
    };
    element.addEventListener('pointerdown', (event) => {
      element.setPointerCapture(event.pointerId);
      seekTo(event);
    });
    element.addEventListener('pointermove', (event) => event.buttons === 1 && seekTo(event));
  }

  /** The time that is shown, by the moment's clock. */
  #span() {
    const { zero, cursor } = this.#moment;
    const { from, to } = this.#timeWindow;
    return { from: zero + from, to: zero + to, zero, cursor };
  }

  /** @param legend  texts, each with the colour that it explains, if any */
  #describe(kind, legend) {
    const shown = JSON.stringify([kind, legend]);
    if (shown === this.#shown) {
      return;
    }
    this.#shown = shown;
    this.element.dataset.shows = kind;
    this.canvas.element.setAttribute('aria-label', `${this.#title}: ${descriptions[kind]}`);
    this.#legend.replaceChildren(...legend.map(({ text, colour }) => {
      const swatch = make('span', { className: 'swatch' });
      swatch.style.background = colour ?? '';
      return make('span', {}, ...(colour ? [swatch] : []), text);
    }));
  }
}
