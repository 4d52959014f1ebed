// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

import { byId } from './format.js';
import { fetchJson } from './frame_store.js';
import { LivePage } from './live.js';
import { RecordingPage } from './recording.js';

async function openPage() {
  const setup = await fetchJson('setup.json');
  return setup.mode === 'live'
    ? new LivePage(setup)
    : new RecordingPage(setup, await fetchJson('recording.json'));
}

function onKey(page, event) {
  const keys = byId('keys');
  if (event.key === ' ' && !event.target.matches('button, input, select, summary')) {
    event.preventDefault();
    page.togglePause();
  } else if (event.key === 'Escape') {
    page.clearSelection();
  } else if (event.key === '?' && !event.target.matches('input')) {
    keys.showModal();
  }
}

try {
  const page = await openPage();
  const pause = byId('pause');
  pause.hidden = false;
  pause.addEventListener('click', () => page.togglePause());
  byId('show-keys').addEventListener('click', () => byId('keys').showModal());
  document.addEventListener('keydown', (event) => onKey(page, event));
} catch (error) {
  byId('connection').textContent = 'not connected';
  byId('connection').dataset.state = 'lost';
  byId('notice').textContent = `The page cannot be loaded: ${error.message}`;
  byId('notice').hidden = false;
}
