// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

import { readAddress, writeAddress } from './address.js';
import { Filters } from './filters.js';
import { byId } from './format.js';
import { Selection } from './selection.js';
import { TimeWindow } from './time_window.js';
import { Tools } from './tools.js';
import { Wall } from './wall.js';

/** What the page has whatever it shows: filters, a selection, tools, a wall and a player; and all of it in the address. */
export class Page {
  #isOpen = false;
  address = readAddress();
  filters = new Filters(() => this.changed());
  selection = new Selection(() => this.changed());
  tools = new Tools(this.filters, this.selection, () => this.changed());
  cameras = [];
  timeWindow;
  wall;
  player;

  /** @param whole, usual  as for a `TimeWindow` */
  constructor(whole, usual) {
    this.timeWindow = new TimeWindow(whole, usual, () => this.changed());
    this.selection.text = this.address.object ?? '';
    this.filters.parameters = this.address;
  }

  /** Shows these cameras as the address wants; the player moves through their time. */
  open(cameras, player) {
    this.cameras = cameras;
    this.player = player;
    this.tools.cameras = cameras;
    this.tools.parameters = this.address;
    this.wall = new Wall(new Map(cameras.map(({ view }) => [view.number, view])), () => this.changed());
    cameras.forEach(({ view }) => view.makeSeekable((time) => player.show(time)));
    this.wall.choose(Number(this.address.camera));
    this.timeWindow.text = this.address.time ?? '';
    this.#isOpen = true;
  }

  /** Selects no object; or shows all cameras, when none was selected. */
  clearSelection() {
    if (this.selection.text === '') {
      this.wall.choose(null);
    } else {
      this.selection.select();
    }
  }

  /** Redraws, and puts what is shown into the address. */
  changed() {
    if (!this.#isOpen) {
      return; // the address is being read
    }
    writeAddress({
      ...this.moment(),
      camera: this.wall.chosen ?? '',
      object: this.selection.text,
      time: this.timeWindow.text,
      ...this.filters.parameters,
      ...this.tools.parameters,
    });
    this.cameras.forEach((camera) => camera.refresh());
  }

  /** The sentence above the cameras; none when it is empty. */
  complain(text) {
    byId('notice').textContent = text;
    byId('notice').hidden = text === '';
  }
}
