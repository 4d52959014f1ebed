// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

import { nameOf } from './format.js';
import { colourOf, fittingText, inkOn, prepareCanvas } from './geometry.js';

const axisHeight = 20;
const timelineFont = '11px system-ui, "DejaVu Sans", sans-serif';

/** A round number of seconds between marks, so that they do not touch. */
function markDistance(duration, width) {
  const rough = (duration * 70) / width;
  const steps = [0.1, 0.2, 0.5, 1, 2, 5, 10, 20, 30, 60, 120, 300, 600, 1200, 1800];
  return steps.find((step) => step >= rough) ?? Math.ceil(rough / 3600) * 3600;
}

/** How high each row is: lower the more there are, down to where it can still be seen. */
const laneHeightFor = (lanes) => Math.max(5, Math.min(18, 220 / lanes));

function drawAxis(context, { from, to, zero }, x, height, ink, width) {
  const distance = markDistance(to - from, width);
  const digits = distance < 1 ? 1 : 0;
  context.font = timelineFont;
  context.textAlign = 'center';
  for (let mark = Math.ceil((from - zero) / distance); zero + mark * distance <= to; mark += 1) {
    const at = x(zero + mark * distance);
    context.fillStyle = ink.grid;
    context.fillRect(at, axisHeight - 4, 1, height - axisHeight + 4);
    context.fillStyle = ink.text;
    const half = 20;
    context.fillText(`${(mark * distance).toFixed(digits)} s`, Math.min(Math.max(at, half), width - half), 12);
  }
  context.textAlign = 'left';
}

function drawLife(context, life, x, laneHeight) {
  const left = x(life.first);
  const width = Math.max(2, x(life.last) - left);
  const top = axisHeight + life.lane * laneHeight;
  context.fillStyle = colourOf(life.objectId);
  context.beginPath();
  context.roundRect(left, top + 1, width, laneHeight - 2, Math.min(4, laneHeight / 3));
  context.fill();
  if (laneHeight >= 13) {
    context.font = timelineFont;
    context.fillStyle = inkOn(life.objectId);
    const visibleLeft = Math.max(left, 0);
    context.fillText(fittingText(context, nameOf(life), left + width - visibleLeft - 8), visibleLeft + 4,
      top + laneHeight / 2 + 4);
  }
}

/** A diamond for a connect, a cross for a delete, in the row of the object that it is about. */
function drawEvent(context, event, lives, x, laneHeight, ink) {
  const life = lives.findLast(({ objectId, first }) => objectId === event.objectId && first <= event.at);
  if (!life) {
    return;
  }
  const [at, middle, size] = [x(event.at), axisHeight + (life.lane + 0.5) * laneHeight, Math.min(5, laneHeight / 2)];
  context.beginPath();
  if (event.action === 'Delete') {
    context.fillStyle = colourOf(life.objectId);
    context.fillRect(x(life.last), middle - 1, at - x(life.last), 2);
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

/**
 * Draws objects' lives and events between two times. The axis counts from `zero`; `cursor`, when it is there, is the
 * time that the picture shows.
 */
export function drawTimeline(canvas, { lives, events }, span, isShown) {
  const shown = lives.filter(({ className, last }) => isShown(className) && last >= span.from);
  const lanes = Math.max(3, ...shown.map(({ lane }) => lane + 1));
  const laneHeight = laneHeightFor(lanes);
  canvas.style.height = `${axisHeight + lanes * laneHeight + 4}px`;
  const { context, width, height, ink } = prepareCanvas(canvas);
  const x = (at) => ((at - span.from) / (span.to - span.from)) * width;
  drawAxis(context, span, x, height, ink, width);
  shown.forEach((life) => drawLife(context, life, x, laneHeight));
  events.forEach((event) => drawEvent(context, event, shown, x, laneHeight, ink));
  if (span.cursor !== undefined) {
    context.fillStyle = ink.mark;
    context.fillRect(x(span.cursor) - 1, 0, 2, height);
  }
}
