// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

import { fittingText } from './canvas.js';
import { colourOf, inkOn } from './colours.js';
import { densityOf, drawDensity } from './density.js';
import { durationText, nameOf } from './format.js';

const axisHeight = 20;
const timelineFont = '11px system-ui, "DejaVu Sans", sans-serif';
const mostHeight = 150;

/** Bars that are lower, or have less room each, cannot be distinguished: their density is drawn. In units of the page. */
const lowestLane = 3;
const leastRoom = 8;

const legendOfTracks = [{ text: '◆ seen again' }, { text: '✕ left' },
  { text: 'solid: tracked with confidence; dashed: without; dotted: not tracked' }];

/** A round number of seconds between marks, so that they do not touch. */
function markDistance(duration, width) {
  const rough = (duration * 70) / width;
  const steps = [0.1, 0.2, 0.5, 1, 2, 5, 10, 20, 30, 60, 120, 300, 600, 1200, 1800];
  return steps.find((step) => step >= rough) ?? Math.ceil(rough / 3600) * 3600;
}

/** How high each row is: lower the more there are, so that all have room. */
const laneHeightFor = (lanes) => Math.min(18, mostHeight / lanes);

function drawAxis(context, { from, to, zero }, x, height, ink, width) {
  const distance = markDistance(to - from, width);
  context.font = timelineFont;
  context.textAlign = 'center';
  for (let mark = Math.ceil((from - zero) / distance); zero + mark * distance <= to; mark += 1) {
    const at = x(zero + mark * distance);
    context.fillStyle = ink.grid;
    context.fillRect(at, axisHeight - 4, 1, height - axisHeight + 4);
    context.fillStyle = ink.text;
    const half = 20;
    const text = distance < 1 ? `${(mark * distance).toFixed(1)} s` : durationText(mark * distance);
    context.fillText(text, Math.min(Math.max(at, half), width - half), 12);
  }
  context.textAlign = 'left';
}

/** The tracks of each object, in their order. */
function byObject(tracks) {
  const grouped = new Map();
  for (const track of tracks) {
    const others = grouped.get(track.objectId);
    if (others) {
      others.push(track);
    } else {
      grouped.set(track.objectId, [track]);
    }
  }
  return grouped;
}

/** Where a track's bar is. */
function barOf(track, x, laneHeight) {
  const left = x(track.first);
  const gap = laneHeight >= 5 ? 1 : 0;
  return {
    x: left,
    y: axisHeight + track.lane * laneHeight + gap,
    width: Math.max(2, x(track.last) - left),
    height: Math.max(1, laneHeight - 2 * gap),
  };
}

function drawTrack(context, track, bar, isMarked, ink) {
  context.fillStyle = colourOf(track.objectId);
  context.beginPath();
  context.roundRect(bar.x, bar.y, bar.width, bar.height, Math.min(4, bar.height / 3));
  context.fill();
  if (isMarked) {
    context.strokeStyle = ink.mark;
    context.lineWidth = 2;
    context.stroke();
  }
  if (bar.height >= 11) {
    const visibleLeft = Math.max(bar.x, 0);
    const text = fittingText(context, timelineFont, nameOf(track), bar.x + bar.width - visibleLeft - 8);
    context.font = timelineFont;
    context.fillStyle = inkOn(track.objectId);
    context.fillText(text, visibleLeft + 4, bar.y + bar.height / 2 + 4);
  }
}

/** A diamond for a connect, a cross for a delete, in the row of the event's object. */
function drawEvent(context, event, tracksOfObject, x, laneHeight, ink) {
  const track = tracksOfObject.findLast(({ first }) => first <= event.at);
  if (!track) {
    return;
  }
  const [at, middle, size] = [x(event.at), axisHeight + (track.lane + 0.5) * laneHeight, Math.min(5, laneHeight / 2)];
  context.beginPath();
  if (event.action === 'Delete') {
    context.fillStyle = colourOf(track.objectId);
    context.fillRect(x(track.last), middle - 1, at - x(track.last), 2);
    context.moveTo(at - size, middle - size);
    context.lineTo(at + size, middle + size);
    context.moveTo(at + size, middle - size);
    context.lineTo(at - size, middle + size);
    context.strokeStyle = ink.mark;
    context.lineWidth = 2;
    context.stroke();
    return;
  }
  context.moveTo(at, middle - size);
  context.lineTo(at + size, middle);
  context.lineTo(at, middle + size);
  context.lineTo(at - size, middle);
  context.closePath();
  context.fillStyle = ink.mark;
  context.fill();
}

/** Draws a bar for each object's track, and its events. Gives the bars with their objects' numbers. */
function drawTracks(context, { shown, events, laneHeight, x, isMarked, ink }) {
  const bars = shown.map((track) => ({ objectId: track.objectId, area: barOf(track, x, laneHeight), track }));
  bars.forEach(({ objectId, area, track }) => drawTrack(context, track, area, isMarked(objectId), ink));
  const tracksOf = byObject(shown);
  events.forEach((event) => drawEvent(context, event, tracksOf.get(event.objectId) ?? [], x, laneHeight, ink));
  return bars;
}

/** In front of a density, only the marked objects have bars. */
function drawMarked(context, { shown, x, isMarked, ink }) {
  const marked = shown.filter(({ objectId }) => isMarked(objectId)).map((track) => ({ ...track, lane: 0 }));
  const bars = marked.map((track) => ({ objectId: track.objectId, area: barOf(track, x, 16), track }));
  bars.forEach(({ area, track }) => drawTrack(context, track, area, true, ink));
  return bars;
}

/**
 * Draws objects' tracks and events between two times; where there are too many for the room, how many there were at a time,
 * for each class. The axis counts from `zero`; `cursor`, when it is there, is the time that the picture shows. Gives the
 * bars with their objects' numbers, a legend, and which `kind` of drawing it is: "tracks" or "density".
 */
export function drawTimeline(canvas, { tracks, events, span }, { isClassShown, isMarked }) {
  const shown = tracks.filter(({ className, first, last }) => isClassShown(className) && last >= span.from && first <= span.to);
  const lanes = shown.reduce((most, { lane }) => Math.max(most, lane + 1), 3);
  const laneHeight = laneHeightFor(lanes);
  const isDense = canvas.width > 0 && (laneHeight < lowestLane || shown.length * leastRoom > canvas.width);
  canvas.element.style.height = `${Math.ceil(axisHeight + (isDense ? mostHeight / 2 : lanes * laneHeight) + 4)}px`;
  const { context, width, height, ink } = canvas.begin();
  const x = (at) => ((at - span.from) / (span.to - span.from)) * width;
  drawAxis(context, span, x, height, ink, width);
  const drawing = { shown, events, laneHeight, x, isMarked, ink };
  const legend = isDense
    ? drawDensity(context, densityOf(shown, span, width), { top: axisHeight, bottom: height }, ink) : legendOfTracks;
  const bars = isDense ? drawMarked(context, drawing) : drawTracks(context, drawing);
  if (span.cursor !== undefined) {
    context.fillStyle = ink.mark;
    context.fillRect(x(span.cursor) - 1, 0, 2, height);
  }
  return { bars, legend, kind: isDense ? 'density' : 'tracks' };
}
