// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

import { attributeText, counted, eventText, listEntries, make, nameOf, seconds, statusText } from './format.js';
import { colourOf, darkScheme } from './geometry.js';
import { drawPicture } from './picture.js';
import { drawTimeline } from './timeline.js';

const columns = [['Object', ''], ['Score', 'number'], ['Status', ''], ['Age', 'number']];
const eventsListed = 5;

/** A camera's part of the page: its picture, its timeline, and a table that says the same without a picture. */
export class CameraView {
  #setup;
  #filters;
  #pill = make('p', { className: 'pill' });
  #facts = make('p', { className: 'facts' });
  #picture = make('canvas');
  #veilTitle = make('strong');
  #veilText = make('span');
  #veil = make('div', { className: 'veil', hidden: true }, make('p', {}, this.#veilTitle, this.#veilText));
  #timeline = make('canvas');
  #timelineBox = make('div', {}, this.#timeline);
  #events = make('ol', { className: 'events' });
  #caption = make('caption');
  #rows = make('tbody');
  #moment = null;

  constructor(title, setup, filters) {
    this.#setup = setup;
    this.#filters = filters;
    this.#picture.style.aspectRatio = setup.aspect;
    this.#describe(title);
    this.section = this.#build(title);
    this.section.style.setProperty('--aspect', setup.aspect);
    new ResizeObserver(() => this.redraw()).observe(this.#picture);
    darkScheme.addEventListener('change', () => this.redraw());
  }

  /**
   * Shows a moment: its `frame`, the `frames` before it, `lives`, `events`, the `span` of its timeline, and `now`. All
   * times are in seconds of one clock.
   */
  show(moment) {
    this.#moment = moment;
    this.redraw();
  }

  redraw() {
    const moment = this.#moment;
    if (!moment) {
      return;
    }
    const drawn = drawPicture(this.#picture, moment, this.#setup.boxes, this.#filters.isShown);
    drawTimeline(this.#timeline, moment, moment.span, this.#filters.isShown);
    this.#fillTable(drawn, moment);
    listEntries(this.#events, moment.events.filter(({ at }) => at <= moment.now).slice(-eventsListed).reverse()
      .map((event) => ({ when: moment.timeText(event.at), text: eventText(event) })));
    this.section.dataset.timestamp = moment.frame?.timestamp ?? '';
  }

  /** One word for how it is, and facts beside it. */
  setState(state, text, facts) {
    this.section.dataset.state = state;
    this.#pill.dataset.state = state;
    this.#pill.textContent = text;
    this.#facts.replaceChildren(...facts.map((fact) => make('span', {}, fact)));
  }

  /** What is wrong, over the picture, which is not up to date then; nothing when `problem` is empty. */
  setProblem(title, problem) {
    this.#veil.hidden = problem === '';
    this.#veilTitle.textContent = title;
    this.#veilText.textContent = problem;
  }

  /** Calls back with the time that is pointed at in the timeline. */
  makeSeekable(seek) {
    this.#timelineBox.classList.add('seekable');
    const timeAt = (event) => {
      const { from, to } = this.#moment.span;
      seek(from + (event.offsetX / this.#timeline.clientWidth) * (to - from));
    };
    this.#timeline.addEventListener('pointerdown', (event) => {
      this.#timeline.setPointerCapture(event.pointerId);
      timeAt(event);
    });
    this.#timeline.addEventListener('pointermove', (event) => event.buttons === 1 && timeAt(event));
  }

  #describe(title) {
    for (const [canvas, text] of [[this.#picture, 'boxes and tracks; the table lists the objects'],
      [this.#timeline, 'objects\' lives and events; the list below names the latest events']]) {
      canvas.setAttribute('role', 'img');
      canvas.setAttribute('aria-label', `${title}: ${text}`);
    }
  }

  #build(title) {
    const heads = columns.map(([name, className]) => make('th', { scope: 'col', className }, name));
    const table = make('table', {}, this.#caption, make('thead', {}, make('tr', {}, ...heads)), this.#rows);
    return make('section', { className: 'camera', ariaLabel: title },
      make('header', {}, make('h2', {}, title), this.#pill, this.#facts),
      make('div', { className: 'content' },
        make('div', { className: 'picture' }, this.#picture, this.#veil),
        make('div', { className: 'past' }, this.#timelineBox,
          make('p', { className: 'legend' }, make('span', {}, '◆ connected'), make('span', {}, '✕ deleted'),
            make('span', {}, 'solid: tracked with confidence; dashed: without; dotted: not tracked')),
          this.#events),
        make('div', { className: 'objects scroll' }, table)));
  }

  #fillTable(drawn, { lives, now }) {
    const byObjectId = (a, b) => a.detection.objectId - b.detection.objectId;
    this.#caption.textContent = counted(drawn.length, 'object');
    this.#rows.replaceChildren(...drawn.sort(byObjectId).flatMap(({ detection, area }) => {
      const life = lives.findLast(({ objectId, first }) => objectId === detection.objectId && first <= now);
      return this.#rowsOf(detection, area, life ? seconds(Math.min(now, life.last) - life.first) : '');
    }));
  }

  /** A row for the object, and one below it for its attributes. */
  #rowsOf(detection, area, age) {
    const swatch = make('span', { className: 'swatch' });
    swatch.style.background = colourOf(detection.objectId);
    const row = make('tr', {},
      make('td', { className: 'name' }, swatch, nameOf(detection)),
      make('td', { className: 'number' }, `${detection.score}`),
      make('td', {}, statusText(detection.status)),
      make('td', { className: 'number' }, age));
    row.dataset.objectId = detection.objectId;
    row.dataset.box = area ? [area.x, area.y, area.width, area.height].map((each) => each.toFixed(2)).join(' ') : '';
    const attributes = detection.attributes.map((each) => make('span', {}, attributeText(each)));
    return [row, make('tr', { className: 'attributes' }, make('td', { colSpan: columns.length }, ...attributes))];
  }
}
