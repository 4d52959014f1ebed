// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

import { areaOf, boxOf } from './boxes.js';
import { colourOf } from './colours.js';
import { longestGap, trailLength } from './history.js';
import { drawLabel, placeLabels } from './labels.js';
import { drawShape } from './shapes.js';

/** Solid for an object that is tracked with confidence, dashed for one that is tracked without, dotted for others. */
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

/** A trail is one path that fades towards its past. */
function drawTrail(context, { objectId, points }, width, height, now) {
  const [first, last] = [points[0], points.at(-1)];
  const gradient = context.createLinearGradient(first.x * width, first.y * height, last.x * width, last.y * height);
  const fade = (at) => Math.max(0, 1 - (now - at) / trailLength).toFixed(2);
  gradient.addColorStop(0, colourOf(objectId, fade(first.at)));
  gradient.addColorStop(1, colourOf(objectId, fade(last.at)));
  context.strokeStyle = gradient;
  context.beginPath();
  points.forEach(({ x, y, at }, index) => {
    const isStart = index === 0 || at - points[index - 1].at > longestGap;
    context[isStart ? 'moveTo' : 'lineTo'](x * width, y * height);
  });
  context.stroke();
}

const inView = (trail, viewport) => ({ ...trail, points: trail.points.map(viewport.toView) });

function drawTrails(context, trails, width, height, now) {
  context.lineWidth = 2.5;
  context.lineCap = 'round';
  context.lineJoin = 'round';
  trails.forEach((trail) => drawTrail(context, trail, width, height, now));
  context.lineCap = 'butt';
}

function drawBox(context, { detection, area, isMarked }, onPhotograph) {
  context.fillStyle = colourOf(detection.objectId, isMarked ? 0.28 : 0.1);
  context.fillRect(area.x, area.y, area.width, area.height);
  if (onPhotograph) {
    context.strokeStyle = 'rgb(255 255 255 / 55%)';
    context.lineWidth = isMarked ? 7 : 4.4;
    context.strokeRect(area.x, area.y, area.width, area.height);
  }
  context.strokeStyle = colourOf(detection.objectId);
  context.lineWidth = isMarked ? 4 : 2.4;
  context.setLineDash(dashesOf(detection.status));
  context.strokeRect(area.x, area.y, area.width, area.height);
  context.setLineDash([]);
}

/** The detections that are shown, each with its area in the picture; null where it has no box. */
export function objectsOf(frame, boxes, width, height, { isShown, isMarked, viewport }) {
  return (frame?.detections ?? []).filter(isShown).map((detection) => ({
    detection,
    area: areaOf(viewport.boxOf(boxOf(detection, boxes)), width, height),
    isMarked: isMarked(detection.objectId),
  }));
}

/**
 * Draws a moment of a camera: `frame`, null before the first, and the `trails` up to the time `now`. Gives the objects
 * that have a box. `heat` and `shape` are drawn below them, where there are any.
 */
export function drawPicture(canvas, { frame, trails, now }, { boxes, onPhotograph, isClassShown, viewport, heat, shape, ...choice }) {
  const { context, width, height, ink } = canvas.begin();
  if (onPhotograph) {
    context.clearRect(0, 0, width, height);
  } else {
    drawGrid(context, width, height, ink);
  }
  heat?.draw(context, width, height, viewport, isClassShown);
  const shownTrails = trails.until(now).filter(({ className }) => isClassShown(className));
  drawTrails(context, viewport.scale === 1 ? shownTrails : shownTrails.map((trail) => inView(trail, viewport)), width, height, now);
  if (shape) {
    drawShape(context, shape, width, height, viewport, ink);
  }
  const objects = objectsOf(frame, boxes, width, height, { viewport, ...choice }).filter(({ area }) => area);
  objects.forEach((object) => drawBox(context, object, onPhotograph));
  placeLabels(context, objects, { width, height }).reverse().forEach((label) => drawLabel(context, label));
  return objects;
}
