// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

import { byId, shortPath } from './format.js';
import { Page } from './page.js';
import { RecordingCamera } from './recording_camera.js';
import { RecordingPlayer } from './recording_player.js';

/** The page while it shows a recording, or several in step: by the time since each began. */
export class RecordingPage extends Page {
  /** @param overviews  of the recordings, in order */
  constructor(setup, overviews) {
    super({ from: 0, to: Math.max(0.1, ...overviews.map(({ seconds }) => seconds)) });
    const cameras = overviews.map((overview, place) => this.#make(setup, overview, place + 1, overviews.length));
    this.filters.offer([...new Set(overviews.flatMap(({ detectionsByClass }) => Object.keys(detectionsByClass)))].sort());
    byId('source').textContent = overviews.map(({ recording }) => shortPath(recording)).join(', ');
    byId('source').title = overviews.map(({ recording }) => recording).join('\n');
    byId('connection').hidden = true;
    byId('copy-cut').hidden = false;
    const player = new RecordingPlayer(cameras, this.timeWindow, () => this.changed());
    player.seek(Number(this.address.frame) || 0);
    this.open(cameras, player);
  }

  /** The members of the address that say which moment is shown. */
  moment() {
    return { frame: this.player.index > 0 ? this.player.index : '' };
  }

  #make(setup, overview, number, count) {
    const title = count === 1 ? 'Recording' : shortPath(overview.recording);
    const complain = (text) => this.complain(count === 1 ? text : `${title}: ${text}`);
    return new RecordingCamera(number, title, setup, overview, this, complain);
  }
}
