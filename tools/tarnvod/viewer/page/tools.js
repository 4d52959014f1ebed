// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

import { rowsOf, save, toCsv } from './downloads.js';
import { byId } from './format.js';

/** The page's tools: the heat map, following, shapes to be drawn, and what is saved. */
export class Tools {
  #changed;
  #filters;
  #selection;
  #cameras = [];
  #drawing = null;

  /** @param changed  called when another choice was made */
  constructor(filters, selection, changed) {
    this.#filters = filters;
    this.#selection = selection;
    this.#changed = changed;
    for (const id of ['heat', 'follow']) {
      byId(id).addEventListener('change', () => this.#changed());
    }
    byId('tools').addEventListener('click', ({ target }) => {
      byId('tools').open &&= !target.matches('button');
    });
    byId('draw-region').addEventListener('click', () => this.draw(this.#drawing === 'region' ? null : 'region'));
    byId('draw-line').addEventListener('click', () => this.draw(this.#drawing === 'line' ? null : 'line'));
    byId('copy-cut').addEventListener('click', () => this.#shown().forEach((camera) => camera.showCut()));
    byId('save-picture').addEventListener('click', () => this.#shown().forEach(({ view }) => view.savePicture()));
    byId('save-csv').addEventListener('click', () => this.#saveRows('csv', 'text/csv', toCsv));
    byId('save-json').addEventListener('click', () => this.#saveRows('json', 'application/json', (rows) => JSON.stringify(rows, null, 1)));
  }

  /** The cameras whose objects are saved. */
  set cameras(cameras) {
    this.#cameras = cameras;
  }

  get isHeat() {
    return byId('heat').checked;
  }

  get isFollowing() {
    return byId('follow').checked;
  }

  /** What the pointer draws: "region", "line", or null. */
  get drawing() {
    return this.#drawing;
  }

  /** The next drag over a picture draws this; null for nothing. */
  draw(shape) {
    this.#drawing = shape;
    byId('draw-region').setAttribute('aria-pressed', shape === 'region');
    byId('draw-line').setAttribute('aria-pressed', shape === 'line');
  }

  /** Handles a key; gives whether it is one of the tools'. */
  onKey(key) {
    const enlarge = (factor) => this.#shown().forEach(({ view }) => view.enlarge(factor));
    const actions = {
      '+': () => enlarge(1.5),
      '-': () => enlarge(1 / 1.5),
      0: () => enlarge(0),
      f: () => byId('follow').click(),
      h: () => byId('heat').click(),
    };
    actions[key]?.();
    return key in actions;
  }

  get parameters() {
    const of = (name) => this.#cameras.map(({ view }) => view).filter((view) => view[name] !== '')
      .map((view) => `${view.number}:${view[name]}`).join(';');
    return { heat: this.isHeat ? 1 : '', follow: this.isFollowing ? 1 : '', zoom: of('zoomText'), shape: of('shapeNumbers') };
  }

  set parameters({ heat = '', follow = '', zoom = '', shape = '' }) {
    byId('heat').checked = heat !== '';
    byId('follow').checked = follow !== '';
    const restore = (text, name) => text.split(';').filter((each) => each !== '').forEach((each) => {
      const [number, value] = each.split(':');
      const found = this.#cameras.find(({ view }) => view.number === Number(number));
      if (found && value !== undefined) {
        found.view[name] = value;
      }
    });
    restore(zoom, 'zoomText');
    restore(shape, 'shapeNumbers');
  }

  #shown = () => this.#cameras.filter(({ view }) => !view.section.hidden);

  /** Saves the selected object, or all that pass the filters, in the time that the page has. */
  async #saveRows(ending, type, toText) {
    const rows = [];
    for (const camera of this.#shown()) {
      const { number } = camera.view;
      const isWanted = (detection) => this.#filters.isShown(detection) &&
        (this.#selection.text === '' || this.#selection.isSelected(number, detection.objectId));
      rows.push(...rowsOf(number, await camera.framesToSave(), camera.zero, isWanted));
    }
    save(`objects.${ending}`, new Blob([toText(rows)], { type }));
  }
}
