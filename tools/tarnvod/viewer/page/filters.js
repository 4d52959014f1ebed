// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

import { attributeText, byId, make } from './format.js';

const statusOrder = ['Untracked', 'TrackedUnconfident', 'TrackedConfident'];

/** Which objects are shown: a checkbox for each class, the least status and score, and words of an attribute. */
export class Filters {
  #group = byId('classes');
  #status = byId('status');
  #score = byId('score');
  #attribute = byId('attribute');
  #known = new Set();
  #hidden = new Set();
  #changed;

  /** @param changed  called when the choice has changed */
  constructor(changed) {
    this.#changed = changed;
    for (const element of [this.#status, this.#score, this.#attribute]) {
      element.addEventListener('input', () => this.#changed());
    }
  }

  isClassShown = (className) => !this.#hidden.has(className);

  isShown = (detection) => this.isClassShown(detection.className) &&
    statusOrder.indexOf(detection.status) >= statusOrder.indexOf(this.#status.value) &&
    detection.score >= Number(this.#score.value) && this.#hasAttribute(detection);

  /** Offers classes that were not offered yet. */
  offer(classNames) {
    for (const className of classNames) {
      if (!this.#known.has(className)) {
        this.#known.add(className);
        this.#add(className);
      }
    }
  }

  /** The choice as parameters of the address; those of the usual choice are absent. */
  get parameters() {
    return {
      hide: [...this.#hidden].join('\n'),
      status: this.#status.value === statusOrder[0] ? '' : this.#status.value,
      score: Number(this.#score.value) > 0 ? this.#score.value : '',
      attribute: this.#attribute.value,
    };
  }

  set parameters({ hide = '', status = '', score = '', attribute = '' }) {
    this.#hidden = new Set(hide === '' ? [] : hide.split('\n'));
    this.#status.value = statusOrder.includes(status) ? status : statusOrder[0];
    this.#score.value = score;
    this.#attribute.value = attribute;
    byId('more').open = status !== '' || score !== '' || attribute !== '';
  }

  #hasAttribute({ attributes }) {
    const words = this.#attribute.value.trim().toLowerCase();
    return words === '' || attributes.some((each) => attributeText(each).toLowerCase().includes(words));
  }

  #add(className) {
    const box = make('input', { type: 'checkbox', checked: this.isClassShown(className) });
    box.addEventListener('change', () => {
      this.#hidden[box.checked ? 'delete' : 'add'](className);
      this.#changed();
    });
    this.#group.append(make('label', { title: className }, box, make('span', {}, className)));
    byId('filters').hidden = false;
  }
}
