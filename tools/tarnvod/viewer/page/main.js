// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

import { byId } from './format.js';
import { LivePage } from './live.js';
import { fetchJson, RecordingPage } from './recording.js';

async function openPage() {
  const setup = await fetchJson('setup.json');
  return setup.mode === 'live'
    ? new LivePage(setup)
    : new RecordingPage(setup, await fetchJson('recording.json'));
}

try {
  const page = await openPage();
  const pause = byId('pause');
  pause.hidden = false;
  pause.addEventListener('click', () => page.togglePause());
  document.addEventListener('keydown', (event) => {
    if (event.key === ' ' && !event.target.matches('button, input, select')) {
      event.preventDefault();
      page.togglePause();
    }
  });
} catch (error) {
  byId('connection').textContent = 'not connected';
  byId('connection').dataset.state = 'lost';
  byId('notice').textContent = `The page cannot be filled: ${error.message}`;
  byId('notice').hidden = false;
}
