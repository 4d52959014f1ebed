// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

import { overlap } from './boxes.js';
import { fittingText, widthOf } from './canvas.js';
import { colourOf, inkOn } from './colours.js';
import { nameOf, valuesText } from './format.js';

const nameFont = '600 12px system-ui, "DejaVu Sans", sans-serif';
const valuesFont = '11px system-ui, "DejaVu Sans", sans-serif';

/** Longer texts are cut, so that they leave room for others. In units of the page. */
const widestText = 180;

/** In narrower pictures there is room for short labels only. In units of the page. */
const narrowest = 320;

/** A label's lines and size. */
function labelOf(context, name, values) {
  const nameText = fittingText(context, nameFont, name, widestText);
  const valuesLine = fittingText(context, valuesFont, values, widestText);
  const width = Math.max(widthOf(context, nameFont, nameText), widthOf(context, valuesFont, valuesLine)) + 10;
  return { nameText, valuesLine, width, height: valuesLine === '' ? 18 : 32 };
}

const whole = (context, { detection }) => labelOf(context, nameOf(detection), valuesText(detection));
const short = (context, { detection }) => labelOf(context, `${detection.objectId}`, '');

/** Where a label may be: above its box, below it, or inside it; always whole in the picture. */
function placesFor(label, area, picture) {
  const fitX = (x) => Math.min(Math.max(0, x), Math.max(0, picture.width - label.width));
  const [left, right] = [fitX(area.x), fitX(area.x + area.width - label.width)];
  const bottom = area.y + area.height;
  return [[left, area.y - label.height], [right, area.y - label.height], [left, bottom], [right, bottom], [left, area.y]]
    .map(([x, y]) => ({ x, y, width: label.width, height: label.height }))
    .filter(({ y, height }) => y >= 0 && y + height <= picture.height);
}

/** A label that is wanted whatever it covers goes where it covers no other label, if there is such a place. */
function placeMarked(context, object, picture, placed) {
  const label = whole(context, object);
  const places = placesFor(label, object.area, picture);
  const at = places.find((place) => !placed.some((other) => overlap(place, other.at))) ??
    { x: Math.max(0, object.area.x), y: Math.max(0, object.area.y), width: label.width, height: label.height };
  return { object, label, at };
}

/** The whole label, or else the short one, where it covers neither labels nor boxes of others; or else none. */
function placeIfFree(context, object, picture, placed, objects) {
  for (const make of picture.width < narrowest ? [short] : [whole, short]) {
    const label = make(context, object);
    const at = placesFor(label, object.area, picture).find((place) =>
      !placed.some((other) => overlap(place, other.at)) &&
      !objects.some((other) => other !== object && overlap(place, other.area)));
    if (at) {
      return { object, label, at };
    }
  }
  return null;
}

/** Gives each object a label, as far as there is room; those that are marked always have theirs. */
export function placeLabels(context, objects, picture) {
  const placed = [];
  for (const object of objects.filter(({ isMarked }) => isMarked)) {
    placed.push(placeMarked(context, object, picture, placed));
  }
  for (const object of objects.filter(({ isMarked }) => !isMarked)) {
    const label = placeIfFree(context, object, picture, placed, objects);
    if (label) {
      placed.push(label);
    }
  }
  return placed;
}

export function drawLabel(context, { object: { detection }, label, at }) {
  context.fillStyle = colourOf(detection.objectId);
  context.beginPath();
  context.roundRect(at.x, at.y, at.width, at.height, 3);
  context.fill();
  context.fillStyle = inkOn(detection.objectId);
  context.font = nameFont;
  context.fillText(label.nameText, at.x + 5, at.y + 13);
  if (label.valuesLine !== '') {
    context.font = valuesFont;
    context.fillText(label.valuesLine, at.x + 5, at.y + 27);
  }
}
