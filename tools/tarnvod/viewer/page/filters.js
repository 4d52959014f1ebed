// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

import { byId, make } from './format.js';

/** A checkbox for each class; all are shown until one is unchecked. */
export class ClassFilters {
  #group = byId('filters');
  #known = new Set();
  #hidden = new Set();
  #changed;

  constructor(changed) {
    this.#changed = changed;
  }

  isShown = (className) => !this.#hidden.has(className);

  /** Offers classes that were not offered yet. */
  offer(classNames) {
    for (const className of classNames) {
      if (!this.#known.has(className)) {
        this.#known.add(className);
        this.#add(className);
      }
    }
  }

  #add(className) {
    const box = make('input', { type: 'checkbox', checked: true });
    box.addEventListener('change', () => {
      this.#hidden[box.checked ? 'delete' : 'add'](className);
      this.#changed();
    });
    this.#group.append(make('label', { title: className }, box, make('span', {}, className)));
    this.#group.hidden = false;
  }
}
