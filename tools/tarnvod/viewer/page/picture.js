// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

import { nameOf, valuesText } from './format.js';
import { boxOf, colourOf, fittingText, inkOn, prepareCanvas } from './geometry.js';
import { History, longestGap, tailsOf } from './lives.js';

const chipFont = '600 12px system-ui, "DejaVu Sans", sans-serif';
const valuesFont = '11px system-ui, "DejaVu Sans", sans-serif';

/** Names are cut there, so that they do not cover what others show. In units of the page. */
const widestName = 180;

/** Whole for an object that is tracked for sure, dashed for one that may not be, dotted for one that is only seen. */
const dashesOf = (status) => ({ TrackedConfident: [], TrackedUnconfident: [8, 4] })[status] ?? [2, 4];

function drawGrid(context, width, height, ink) {
  context.strokeStyle = ink.grid;
  context.lineWidth = 1;
  context.beginPath();
  for (const share of [0.25, 0.5, 0.75]) {
    context.moveTo(share * width, 0);
    context.lineTo(share * width, height);
    context.moveTo(0, share * height);
    context.lineTo(width, share * height);
  }
  context.stroke();
}

/** The older, the fainter. */
function drawTail(context, { objectId, points }, width, height, now) {
  context.strokeStyle = colourOf(objectId);
  context.lineWidth = 2.5;
  context.lineCap = 'round';
  points.slice(1).forEach((point, index) => {
    const before = points[index];
    if (point.at - before.at > longestGap) {
      return;
    }
    context.globalAlpha = Math.max(0, 1 - (now - point.at) / History.tail);
    context.beginPath();
    context.moveTo(before.x * width, before.y * height);
    context.lineTo(point.x * width, point.y * height);
    context.stroke();
  });
  context.globalAlpha = 1;
}

/** The object's name on a ground of its colour, and what it looks like: above the box, or inside where there is no room. */
function drawChip(context, detection, area, width) {
  const values = valuesText(detection);
  context.font = chipFont;
  const room = Math.min(widestName, width - 10);
  const name = fittingText(context, nameOf(detection), room);
  const nameWidth = context.measureText(name).width;
  context.font = valuesFont;
  const fittingValues = fittingText(context, values, room);
  const chipWidth = Math.max(nameWidth, context.measureText(fittingValues).width) + 10;
  const chipHeight = values === '' ? 18 : 32;
  const x = Math.min(Math.max(0, area.x), width - chipWidth);
  const y = area.y - chipHeight < 0 ? Math.max(0, area.y) : area.y - chipHeight;
  context.fillStyle = colourOf(detection.objectId);
  context.globalAlpha = 0.92;
  context.beginPath();
  context.roundRect(x, y, chipWidth, chipHeight, 3);
  context.fill();
  context.globalAlpha = 1;
  context.fillStyle = inkOn(detection.objectId);
  context.font = chipFont;
  context.fillText(name, x + 5, y + 13);
  context.font = valuesFont;
  context.fillText(fittingValues, x + 5, y + 27);
}

function drawBox(context, detection, area) {
  const colour = colourOf(detection.objectId);
  context.fillStyle = colour;
  context.globalAlpha = 0.1;
  context.fillRect(area.x, area.y, area.width, area.height);
  context.globalAlpha = 1;
  context.strokeStyle = colour;
  context.lineWidth = 2.4;
  context.lineCap = 'butt';
  context.setLineDash(dashesOf(detection.status));
  context.strokeRect(area.x, area.y, area.width, area.height);
  context.setLineDash([]);
}

/**
 * Draws a moment of a camera: `frame`, null before the first, and the `frames` before it, at the time `now`. Gives where
 * each detection's box was drawn, in units of the page.
 */
export function drawPicture(canvas, { frame, frames, now }, boxes, isShown) {
  const { context, width, height, ink } = prepareCanvas(canvas);
  drawGrid(context, width, height, ink);
  for (const tail of tailsOf(frames, boxes).filter(({ className }) => isShown(className))) {
    drawTail(context, tail, width, height, now);
  }
  const drawn = [];
  for (const detection of (frame?.detections ?? []).filter(({ className }) => isShown(className))) {
    const box = boxOf(detection, boxes);
    const area = box && {
      x: box.left * width,
      y: box.top * height,
      width: (box.right - box.left) * width,
      height: (box.bottom - box.top) * height,
    };
    drawn.push({ detection, area });
  }
  const visible = drawn.filter(({ area }) => area);
  visible.forEach(({ detection, area }) => drawBox(context, detection, area));
  visible.forEach(({ detection, area }) => drawChip(context, detection, area, width));
  return drawn;
}
