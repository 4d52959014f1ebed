// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

export const darkScheme = matchMedia('(prefers-color-scheme: dark)');

const saturation = 0.72;
const hueOf = (objectId) => (objectId * 137.508) % 360;
const lightnessOf = (objectId) => (darkScheme.matches ? [0.66, 0.73, 0.59] : [0.4, 0.47, 0.32])[objectId % 3];

/** An object's colour is the same everywhere and differs from that of its neighbours in number. */
export function colourOf(objectId, alpha = 1) {
  const opacity = alpha === 1 ? '' : ` / ${alpha}`;
  return `hsl(${hueOf(objectId).toFixed(1)} ${100 * saturation}% ${100 * lightnessOf(objectId)}%${opacity})`;
}

/** Black or white, whichever can be read better on an object's colour. */
export function inkOn(objectId) {
  const lightness = lightnessOf(objectId);
  const part = (offset) => {
    const place = (offset + hueOf(objectId) / 30) % 12;
    return lightness - saturation * Math.min(lightness, 1 - lightness) * Math.max(-1, Math.min(place - 3, 9 - place, 1));
  };
  const luminance = 0.2126 * part(0) ** 2.2 + 0.7152 * part(8) ** 2.2 + 0.0722 * part(4) ** 2.2;
  return luminance > 0.18 ? '#000000' : '#ffffff';
}

/** The colours of everything that is not an object's and not the page's style. */
export function inks() {
  return darkScheme.matches
    ? { ground: '#0d1117', grid: '#1d2530', text: '#9aa4b0', mark: '#e6e9ee' }
    : { ground: '#fbfcfd', grid: '#e6eaee', text: '#59636e', mark: '#1b1f24' };
}
