// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

const busy = 503;
const busyPause = 200;
const pause = (milliseconds) => new Promise((resolve) => setTimeout(resolve, milliseconds));

/** An answer that `tarnvod render --html` has put into the page. */
async function unpack(text) {
  const bytes = Uint8Array.from(atob(text), (character) => character.charCodeAt(0));
  return new Response(new Blob([bytes]).stream().pipeThrough(new DecompressionStream('deflate'))).json();
}

async function request(path) {
  const response = await fetch(path);
  if (response.status === busy) {
    await pause(busyPause);
    return request(path);
  }
  if (!response.ok) {
    throw new Error(await response.text());
  }
  return response.json();
}

/** Gives the JSON at a path: that in the page itself, or else what the viewer answers. */
export function fetchJson(path) {
  const inPage = document.getElementById(`/${path}`);
  return inPage ? unpack(inPage.textContent) : request(path);
}
