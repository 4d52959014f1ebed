// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

import { byId } from './format.js';

/** Up to so many cameras are shown with all that is known of them; of more, the pictures only. */
const mostWhole = 2;

/** How several cameras share the window: all at once, as a wall where there are many, or a single one that was chosen. */
export class Wall {
  #views;
  #changed;
  #chosen = null;

  /** @param views  by number; `changed` is called when another choice was made */
  constructor(views, changed) {
    this.#views = views;
    this.#changed = changed;
    byId('cameras').append(...[...views.values()].map(({ section }) => section));
    if (views.size > 1) {
      views.forEach((view, number) => view.makeChoosable(() => this.choose(this.#chosen === number ? null : number)));
    }
    byId('all-cameras').addEventListener('click', () => this.choose(null));
    this.#arrange();
  }

  get chosen() {
    return this.#chosen;
  }

  /** Shows this one alone, or all without a number. */
  choose(number) {
    this.#chosen = this.#views.size > 1 && this.#views.has(number) ? number : null;
    this.#arrange();
    this.#changed();
  }

  #arrange() {
    const shown = this.#chosen === null ? this.#views.size : 1;
    const columns = Math.ceil(Math.sqrt(shown));
    const cameras = byId('cameras');
    cameras.classList.toggle('wall', shown > mostWhole);
    cameras.style.setProperty('--columns', columns);
    cameras.style.setProperty('--rows', Math.ceil(shown / columns));
    byId('all-cameras').hidden = this.#chosen === null;
    this.#views.forEach(({ section }, number) => { section.hidden = this.#chosen !== null && this.#chosen !== number; });
  }
}
