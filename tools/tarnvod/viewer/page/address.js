// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

/** The page's state in its address, behind the `#`, so that a link shows the same: an object of texts. */
export const readAddress = () => Object.fromEntries(new URLSearchParams(location.hash.slice(1)));

/** Writes the members that are not empty. */
export function writeAddress(state) {
  const parameters = new URLSearchParams(Object.entries(state).filter(([, value]) => value !== ''));
  const hash = parameters.size === 0 ? '' : `#${parameters}`;
  if (hash !== location.hash) {
    history.replaceState(null, '', location.pathname + hash);
  }
}
