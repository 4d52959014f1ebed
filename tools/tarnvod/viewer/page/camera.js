// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

import { boxOf, contains, footOf } from './boxes.js';
import { Canvas } from './canvas.js';
import { darkScheme } from './colours.js';
import { savePicture } from './downloads.js';
import { eventText, listEntries, make, seconds } from './format.js';
import { drawPicture, objectsOf } from './picture.js';
import { PictureInput } from './picture_input.js';
import { CopyLine, shapeText } from './shapes.js';
import { ObjectTable } from './table.js';
import { TimelineView } from './timeline_view.js';
import { Viewport } from './viewport.js';

const eventsListed = 5;

/** Of what is under the pointer the smallest is meant. */
const smallest = (areas) => areas.sort((a, b) => a.area.width * a.area.height - b.area.width * b.area.height)[0];

/** A camera's part of the page: its picture, its timeline, and a table that says the same without a picture. */
export class CameraView {
  #setup;
  #filters;
  #selection;
  #tools;
  #viewport = new Viewport();
  #background = null;
  #shape = null;
  #copyLine = new CopyLine(() => this.#removeCopy());
  #copyRemoved = () => {};
  #pill = make('p', { className: 'pill' });
  #summary = make('p', { className: 'summary' });
  #title;
  #picture = new Canvas(() => this.drawPicture());
  #timeline;
  #veilTitle = make('strong');
  #veilText = make('span');
  #veil = make('div', { className: 'veil', hidden: true }, make('p', {}, this.#veilTitle, this.#veilText));
  #events = make('ol', { className: 'events' });
  #eventsShown = '';
  #table;
  #moment = null;
  #objects = [];
  /** The camera's. */
  number;

  /** @param page  whose filters, selection, tools and time it shares with others */
  constructor(title, number, setup, { filters, selection, tools, timeWindow }) {
    this.number = number;
    this.#setup = { ...setup, background: setup.backgrounds[number] };
    this.#filters = filters;
    this.#selection = selection;
    this.#tools = tools;
    this.#timeline = new TimelineView(title, timeWindow, () => this.#drawTimeline());
    this.#table = new ObjectTable((objectId) => selection.hover(number, objectId),
      (objectId) => selection.toggle(number, objectId));
    this.#title = make('span', {}, title);
    this.#describe(title);
    this.section = this.#build(title);
    this.section.dataset.camera = number;
    this.section.style.setProperty('--aspect', setup.aspect);
    new PictureInput(this.#picture, this.#viewport, tools, {
      changed: () => this.#selection.changed(),
      drawn: (shape, isComplete) => this.#drawn(shape, isComplete),
    });
    this.#listen();
  }

  /**
   * Takes a moment to be drawn: its `frame`, the `trails` and `tracks` up to it, `events`, the `zero` of its timeline and
   * the `cursor` there, `now`, and the `heat` map. All times are in seconds of one clock.
   */
  show(moment) {
    this.#moment = moment;
  }

  /** Draws everything; `drawPicture` draws the picture only. */
  redraw() {
    this.drawPicture();
    if (this.#moment) {
      this.#drawTimeline();
      this.#fillTable();
      this.#listEvents();
    }
  }

  drawPicture() {
    if (this.#moment) {
      this.#follow();
      if (this.#background) {
        this.#viewport.applyTo(this.#background);
      }
      this.#objects = drawPicture(this.#picture, this.#moment, this.#choice());
      this.section.dataset.timestamp = this.#moment.frame?.timestamp ?? '';
    }
  }

  /** Enlarges the picture; 0 shows all of it. */
  enlarge(factor) {
    if (factor === 0) {
      this.#viewport.showAll();
    } else {
      this.#viewport.enlarge(factor);
    }
    this.#selection.changed();
  }

  /** Saves what is seen as a PNG image. */
  savePicture() {
    savePicture(`camera-${this.number}.png`, this.#picture.element, this.#background, this.#viewport);
  }

  get zoomText() {
    return this.#viewport.text;
  }

  set zoomText(value) {
    this.#viewport.text = value;
  }

  /** The shape's numbers, as shares of the picture; empty without a shape. */
  get shapeNumbers() {
    return this.#shape ? this.#shape.map((each) => Number(each.toFixed(3))).join() : '';
  }

  set shapeNumbers(value) {
    const numbers = value.split(',').map(Number);
    if ([1, 4].includes(numbers.length) && numbers.every(Number.isFinite)) {
      this.#setShape(numbers);
    }
  }

  /** One word for its state, and details. */
  setState(state, text, summary) {
    this.section.dataset.state = state;
    this.#pill.dataset.state = state;
    this.#pill.textContent = text;
    this.#summary.replaceChildren(...summary.map((item) => make('span', {}, item)));
  }

  /** The problem, over the picture, which is not up to date then; nothing when `problem` is empty. */
  setProblem(title, problem) {
    this.#veil.hidden = problem === '';
    this.#veilTitle.textContent = title;
    this.#veilText.textContent = problem;
  }

  /** Makes the title a button that calls back. */
  makeChoosable(choose) {
    const button = make('button', { type: 'button', className: 'plain', title: 'Show only this one' }, this.#title.textContent);
    button.addEventListener('click', choose);
    this.#title.replaceChildren(button);
  }

  /** Calls back with the time that is pointed at in the timeline. */
  makeSeekable(seek) {
    this.#timeline.makeSeekable(seek);
  }

  #choice() {
    return {
      boxes: this.#setup.boxes,
      onPhotograph: this.#setup.background !== undefined,
      viewport: this.#viewport,
      heat: this.#tools.isHeat ? this.#moment.heat : null,
      shape: this.#shape,
      isShown: this.#filters.isShown,
      isClassShown: this.#filters.isClassShown,
      isMarked: (objectId) => this.#selection.isMarked(this.number, objectId),
    };
  }

  /** Shows a text to be copied; an empty one removes it. */
  showCopy(text) {
    this.#copyLine.show(text);
  }

  /** `removed` is called when the text to be copied is replaced or removed. */
  onCopyRemoved(removed) {
    this.#copyRemoved();
    this.#copyRemoved = removed;
  }

  #removeCopy() {
    this.onCopyRemoved(() => {});
    this.showCopy('');
    this.#shape = null;
    this.#selection.changed();
  }

  #setShape(shape) {
    this.onCopyRemoved(() => {});
    this.#shape = shape;
    this.showCopy(shapeText(shape, this.#setup.boxes));
    this.#selection.changed();
  }

  #drawn(shape, isComplete) {
    this.#shape = shape;
    if (isComplete) {
      this.#tools.draw(null);
      this.#setShape(shape);
    } else {
      this.drawPicture();
    }
  }

  /** Keeps the selected object in the middle. */
  #follow() {
    const selected = this.#tools.isFollowing &&
      this.#moment.frame?.detections.find(({ objectId }) => this.#selection.isSelected(this.number, objectId));
    const box = selected ? boxOf(selected, this.#setup.boxes) : null;
    if (box) {
      this.#viewport.centre(footOf(box));
    }
  }

  #drawTimeline() {
    if (this.#moment) {
      this.#timeline.show(this.#moment, this.#choice());
    }
  }

  #fillTable() {
    const { frame, tracks, now } = this.#moment;
    const choice = this.#choice();
    const objects = objectsOf(frame, choice.boxes, this.#picture.width, this.#picture.height, choice);
    const ageOf = (id) => {
      const track = tracks.findLast(({ objectId, first }) => objectId === id && first <= now);
      return track ? seconds(Math.min(now, track.last) - track.first) : '';
    };
    this.#table.show(objects, ageOf, choice.isMarked, (id) => this.#selection.isSelected(this.number, id));
  }

  #listEvents() {
    const { events, tracks, now, timeText } = this.#moment;
    const classOf = (id) => tracks.findLast(({ objectId }) => objectId === id)?.className;
    const latest = events.filter(({ at }) => at <= now).slice(-eventsListed).reverse()
      .map((event) => ({ when: timeText(event.at), text: eventText(event, classOf), objectId: event.objectId }));
    if (JSON.stringify(latest) !== this.#eventsShown) {
      this.#eventsShown = JSON.stringify(latest);
      listEntries(this.#events, latest);
    }
    for (const entry of this.#events.children) {
      entry.classList.toggle('marked', this.#selection.isMarked(this.number, Number(entry.dataset.objectId)));
    }
  }

  #listen() {
    darkScheme.addEventListener('change', () => this.redraw());
    const select = (objectId) => this.#selection.toggle(this.number, objectId);
    const hover = (objectId) => this.#selection.hover(this.number, objectId);
    for (const [{ element }, areas] of [[this.#picture, () => this.#objects], [this.#timeline.canvas, () => this.#timeline.bars]]) {
      const objectAt = ({ offsetX, offsetY }) => {
        const found = smallest(areas().filter(({ area }) => contains(area, offsetX, offsetY)));
        return found?.objectId ?? found?.detection.objectId;
      };
      element.addEventListener('pointermove', (event) => hover(objectAt(event)));
      element.addEventListener('pointerleave', () => hover());
      element.addEventListener('click', (event) => {
        const objectId = objectAt(event);
        if (objectId !== undefined) {
          select(objectId);
        }
      });
    }
    const entryOf = ({ target }) => target.closest('li')?.dataset.objectId;
    const numberOf = (text) => (text === undefined ? undefined : Number(text));
    this.#events.addEventListener('pointerover', (event) => hover(numberOf(entryOf(event))));
    this.#events.addEventListener('pointerleave', () => hover());
    this.#events.addEventListener('click', (event) => entryOf(event) && select(Number(entryOf(event))));
  }

  #describe(title) {
    const { element } = this.#picture;
    element.setAttribute('role', 'img');
    element.setAttribute('aria-label', `${title}: boxes and trails; the table lists the objects`);
  }

  #build(title) {
    const { background, aspect } = this.#setup;
    const picture = make('div', { className: 'picture' });
    if (background !== undefined) {
      this.#background = make('img', { src: background, alt: '', className: 'background' });
      picture.append(this.#background);
    }
    this.#picture.element.style.aspectRatio = aspect;
    picture.append(this.#picture.element, this.#veil);
    return make('section', { className: 'camera', ariaLabel: title },
      make('header', {}, make('h2', {}, this.#title), this.#pill, this.#summary, this.#copyLine.element),
      make('div', { className: 'content' },
        picture,
        this.#timeline.element,
        make('div', { className: 'side' },
          make('div', { className: 'objects scroll', tabIndex: 0, role: 'region', ariaLabel: `${title}: objects` },
            this.#table.element),
          this.#events)));
  }
}
