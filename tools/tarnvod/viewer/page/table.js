// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

import { colourOf } from './colours.js';
import { attributeText, counted, make, nameOf, statusText } from './format.js';

const columns = [['Object', ''], ['Score', 'number'], ['Status', ''], ['Age', 'number']];

function setText(element, text) {
  if (element.textContent !== text) {
    element.textContent = text;
  }
}

/** An object's two rows: itself, and its attributes below. */
class ObjectRows {
  #swatch = make('span', { className: 'swatch' });
  #name = make('button', { type: 'button', className: 'plain' });
  #cells = columns.slice(1).map(([, className]) => make('td', { className }));
  #attributes = make('td', { colSpan: columns.length });
  #attributesShown = null;
  rows;

  constructor(objectId) {
    this.rows = [
      make('tr', {}, make('td', { className: 'name' }, this.#swatch, this.#name), ...this.#cells),
      make('tr', { className: 'attributes' }, this.#attributes),
    ];
    this.rows.forEach((row) => { row.dataset.objectId = objectId; });
  }

  update({ detection, area }, age, isMarked, isSelected) {
    this.#swatch.style.background = colourOf(detection.objectId);
    setText(this.#name, nameOf(detection));
    this.#name.setAttribute('aria-pressed', isSelected);
    [`${detection.score}`, statusText(detection.status), age].forEach((text, index) => setText(this.#cells[index], text));
    const attributes = detection.attributes.map(attributeText);
    if (`${attributes}` !== this.#attributesShown) {
      this.#attributesShown = `${attributes}`;
      this.#attributes.replaceChildren(...attributes.map((each) => make('span', {}, each)));
    }
    this.rows[0].dataset.box =
      area ? [area.x, area.y, area.width, area.height].map((each) => each.toFixed(2)).join(' ') : '';
    this.rows.forEach((row) => row.classList.toggle('marked', isMarked));
  }
}

/** The table of a camera's objects. Its rows stay for as long as their objects do. */
export class ObjectTable {
  #caption = make('caption');
  #body = make('tbody');
  #known = new Map();
  element;

  /** @param pointed, chosen  called with an object's number; `pointed` without one when the pointer has left */
  constructor(pointed, chosen) {
    const heads = columns.map(([name, className]) => make('th', { scope: 'col', className }, name));
    this.element = make('table', {}, this.#caption, make('thead', {}, make('tr', {}, ...heads)), this.#body);
    const objectAt = ({ target }) => {
      const row = target.closest('tr');
      return row ? Number(row.dataset.objectId) : undefined;
    };
    this.#body.addEventListener('pointerover', (event) => pointed(objectAt(event)));
    this.#body.addEventListener('pointerleave', () => pointed());
    this.#body.addEventListener('click', (event) => chosen(objectAt(event)));
  }

  /** Shows these objects, by number. `ageOf`, `isMarked` and `isSelected` are called with a number. */
  show(objects, ageOf, isMarked, isSelected) {
    setText(this.#caption, counted(objects.length, 'object'));
    const sorted = [...objects].sort((a, b) => a.detection.objectId - b.detection.objectId);
    const left = new Map(this.#known);
    const rows = sorted.flatMap((object) => {
      const { objectId } = object.detection;
      const known = left.get(objectId) ?? new ObjectRows(objectId);
      left.delete(objectId);
      this.#known.set(objectId, known);
      known.update(object, ageOf(objectId), isMarked(objectId), isSelected(objectId));
      return known.rows;
    });
    left.forEach((_, objectId) => this.#known.delete(objectId));
    this.#arrange(rows);
  }

  /** Moves only the rows that are not in their places, so that focus and pointer stay. */
  #arrange(rows) {
    const wanted = new Set(rows);
    [...this.#body.children].filter((row) => !wanted.has(row)).forEach((row) => row.remove());
    rows.forEach((row, index) => {
      if (this.#body.children[index] !== row) {
        this.#body.insertBefore(row, this.#body.children[index] ?? null);
      }
    });
  }
}
