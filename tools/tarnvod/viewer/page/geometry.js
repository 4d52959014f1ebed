// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

/** Where a detection's box is, as shares of the picture's width and height; null when a number is none. */
export function boxOf({ coord1, coord2, coord3, coord4 }, { form, range: [left, top, right, bottom] }) {
  if ([coord1, coord2, coord3, coord4].includes(null)) {
    return null;
  }
  const across = (x) => (x - left) / (right - left);
  const down = (y) => (y - top) / (bottom - top);
  const xs = [across(coord1), across(form === 'size' ? coord1 + coord3 : coord3)];
  const ys = [down(coord2), down(form === 'size' ? coord2 + coord4 : coord4)];
  return { left: Math.min(...xs), top: Math.min(...ys), right: Math.max(...xs), bottom: Math.max(...ys) };
}

/** Where the object stands: the middle of the box's lower edge. */
export const footOf = (box) => ({ x: (box.left + box.right) / 2, y: box.bottom });

export const darkScheme = matchMedia('(prefers-color-scheme: dark)');

const saturation = 0.72;
const hueOf = (objectId) => (objectId * 137.508) % 360;
const lightnessOf = (objectId) => (darkScheme.matches ? [0.66, 0.73, 0.59] : [0.4, 0.47, 0.32])[objectId % 3];

/** An object's colour is the same everywhere and differs from that of its neighbours in number. */
export function colourOf(objectId) {
  return `hsl(${hueOf(objectId).toFixed(1)} ${100 * saturation}% ${100 * lightnessOf(objectId)}%)`;
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

/** What is neither an object's colour nor the page's style. */
export function inks() {
  return darkScheme.matches
    ? { ground: '#0d1117', grid: '#1d2530', text: '#9aa4b0', mark: '#e6e9ee' }
    : { ground: '#fbfcfd', grid: '#e6eaee', text: '#59636e', mark: '#1b1f24' };
}

/** Fits the canvas to its place and the screen's pixels; gives what draws on it in units of the page. */
export function prepareCanvas(canvas) {
  const { clientWidth: width, clientHeight: height } = canvas;
  const scale = devicePixelRatio;
  const [columns, rows] = [Math.round(width * scale), Math.round(height * scale)];
  if (canvas.width !== columns || canvas.height !== rows) {
    canvas.width = columns;
    canvas.height = rows;
  }
  const context = canvas.getContext('2d');
  context.setTransform(scale, 0, 0, scale, 0, 0);
  const ink = inks();
  context.fillStyle = ink.ground;
  context.fillRect(0, 0, width, height);
  return { context, width, height, ink };
}

/** The text, cut where it is longer than there is room. */
export function fittingText(context, text, room) {
  if (context.measureText(text).width <= room) {
    return text;
  }
  let length = text.length;
  while (length > 0 && context.measureText(`${text.slice(0, length)}…`).width > room) {
    length -= 1;
  }
  return length > 0 ? `${text.slice(0, length)}…` : '';
}
