// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

import { fetchJson } from './answers.js';
import { byId } from './format.js';
import { LivePage } from './live.js';
import { RecordingPage } from './recording.js';

const overviewPath = (number) => (number === 1 ? 'recording.json' : `recording-${number}.json`);

async function openPage() {
  const setup = await fetchJson('setup.json');
  return setup.mode === 'live'
    ? new LivePage(setup)
    : new RecordingPage(setup, await Promise.all(setup.cameras.map((number) => fetchJson(overviewPath(number)))));
}

function onTimeKey({ player, timeWindow }, event) {
  const actions = {
    ' ': () => player.togglePause(),
    ArrowLeft: () => player.step(event.shiftKey ? -10 : -1),
    ArrowRight: () => player.step(event.shiftKey ? 10 : 1),
    Home: () => player.toStart(),
    End: () => player.toEnd(),
    n: () => player.stepToEvent(1),
    p: () => player.stepToEvent(-1),
    i: () => timeWindow.zoom(2, player.at),
    o: () => timeWindow.zoom(0.5, player.at),
    a: () => timeWindow.showUsual(),
  };
  if (actions[event.key]) {
    event.preventDefault();
    actions[event.key]();
  }
}

/** Whether a key is for the browser, or for the field that has the focus. */
function isTaken({ key, target, ctrlKey, altKey, metaKey }) {
  return ctrlKey || altKey || metaKey || byId('keys').open ||
    target.matches('input:not([type="checkbox"]), select') ||
    (key === ' ' && target.matches('button, input, summary'));
}

/** Leaves what was entered last: drawing, or the selection, or a single camera. */
function leave(page) {
  if (page.tools.drawing !== null) {
    page.tools.draw(null);
  } else {
    page.clearSelection();
  }
}

function onKey(page, event) {
  if (event.key === 'Escape' && !byId('keys').open) {
    leave(page);
  } else if (event.key === '?' && !isTaken(event)) {
    byId('keys').showModal();
  } else if (!isTaken(event) && !page.tools.onKey(event.key)) {
    onTimeKey(page, event);
  }
}

function connectButtons({ player }) {
  const pause = byId('pause');
  pause.hidden = false;
  pause.addEventListener('click', () => player.togglePause());
  byId('back').addEventListener('click', () => player.step(-1));
  byId('forward').addEventListener('click', () => player.step(1));
  byId('previous-event').addEventListener('click', () => player.stepToEvent(-1));
  byId('next-event').addEventListener('click', () => player.stepToEvent(1));
}

try {
  const page = await openPage();
  connectButtons(page);
  byId('show-keys').addEventListener('click', () => byId('keys').showModal());
  document.addEventListener('keydown', (event) => onKey(page, event));
} catch (error) {
  byId('connection').textContent = 'not connected';
  byId('connection').dataset.state = 'lost';
  byId('notice').textContent = `The page cannot be loaded: ${error.message}`;
  byId('notice').hidden = false;
}
