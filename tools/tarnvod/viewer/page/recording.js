// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

import { readAddress, writeAddress } from './address.js';
import { Filters } from './filters.js';
import { byId, shortPath } from './format.js';
import { RecordingCamera } from './recording_camera.js';
import { RecordingPlayer } from './recording_player.js';
import { Selection } from './selection.js';
import { Tools } from './tools.js';
import { Wall } from './wall.js';

/** The page while it shows a recording, or several in step: by the time since each began. */
export class RecordingPage {
  #cameras;
  #filters = new Filters(() => this.#choose());
  #selection = new Selection(() => this.#choose());
  #tools = new Tools(this.#filters, this.#selection, () => this.#choose());
  #wall;
  #player;
  #isOpen = false;

  /** @param overviews  of the recordings, in order */
  constructor(setup, overviews) {
    const address = readAddress();
    this.#selection.text = address('object');
    this.#filters.parameters =
      { hide: address('hide'), status: address('status'), score: address('score'), attribute: address('attribute') };
    this.#cameras = overviews.map((overview, place) => this.#open(setup, overview, place + 1, overviews.length));
    this.#tools.cameras = this.#cameras;
    this.#tools.parameters =
      { heat: address('heat'), follow: address('follow'), zoom: address('zoom'), shape: address('shape') };
    this.#filters.offer([...new Set(overviews.flatMap(({ detectionsByClass }) => Object.keys(detectionsByClass)))].sort());
    byId('source').textContent = overviews.map(({ recording }) => shortPath(recording)).join(', ');
    byId('source').title = overviews.map(({ recording }) => recording).join('\n');
    byId('connection').hidden = true;
    this.#player = new RecordingPlayer(this.#cameras, () => this.#choose());
    this.#wall = new Wall(new Map(this.#cameras.map(({ view }, place) => [place + 1, view])), () => this.#choose());
    this.#cameras.forEach(({ view }) => view.makeSeekable((time) => this.#player.show(time)));
    this.#wall.choose(Number(address('camera')));
    this.#isOpen = true;
    this.#player.seek(Number(address('frame')) || 0);
  }

  get tools() {
    return this.#tools;
  }

  get player() {
    return this.#player;
  }

  /** Selects no object; or shows all recordings, when none was selected. */
  clearSelection() {
    if (this.#selection.text === '') {
      this.#wall.choose(null);
    } else {
      this.#selection.select();
    }
  }

  #open(setup, overview, number, count) {
    const title = count === 1 ? 'Recording' : shortPath(overview.recording);
    const complain = (text) => this.#complain(count === 1 ? text : `${title}: ${text}`);
    return new RecordingCamera(number, title, setup, overview, this.#filters, this.#selection, this.#tools, complain);
  }

  /** Redraws, and puts what is shown into the address. */
  #choose() {
    if (!this.#isOpen) {
      return; // the address is being read
    }
    writeAddress({
      frame: this.#player.index > 0 ? this.#player.index : '',
      camera: this.#wall.chosen ?? '',
      object: this.#selection.text,
      ...this.#filters.parameters,
      ...this.#tools.parameters,
    });
    this.#cameras.forEach((camera) => camera.refresh());
  }

  #complain(text) {
    byId('notice').textContent = text;
    byId('notice').hidden = false;
  }
}
