// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

// Text for people. Names come from elsewhere and may hold anything: they only ever become text, never markup.

export const byId = (id) => document.getElementById(id);

/** Makes an element; its content is elements and texts. */
export function make(name, properties = {}, ...content) {
  const element = Object.assign(document.createElement(name), properties);
  element.append(...content);
  return element;
}

export const seconds = (value) => `${value.toFixed(1)} s`;

/** "42 s", "2:05", "1:02:05"; a minus where it is in the past. */
export function durationText(value) {
  const whole = Math.round(Math.abs(value));
  const two = (number) => `${number}`.padStart(2, '0');
  const [hours, minutes, rest] = [Math.floor(whole / 3600), Math.floor(whole / 60) % 60, whole % 60];
  const sign = value < 0 && whole > 0 ? '-' : '';
  if (whole < 60) {
    return `${sign}${whole} s`;
  }
  return sign + (hours > 0 ? `${hours}:${two(minutes)}:${two(rest)}` : `${minutes}:${two(rest)}`);
}

export const counted = (count, noun) => `${count} ${noun}${count === 1 ? '' : 's'}`;

export const nameOf = ({ className, objectId }) => `${className} ${objectId}`;

export const statusText = (status) =>
  ({ TrackedConfident: 'confident', TrackedUnconfident: 'unconfident' })[status] ?? 'untracked';

/** The words of an attribute's name: "jacket_colour" is the colour of a jacket, of which the value says enough. */
const wordsOf = (typeName) => typeName.replaceAll('_', ' ').replace(/ colou?r$/, '');

/** "jacket black, 93" */
export function attributeText({ typeName, className, score }) {
  const words = className === null ? typeName.replaceAll('_', ' ') : `${wordsOf(typeName)} ${className}`;
  return words + (score === null ? '' : `, ${score}`);
}

/** The attributes' values alone, for where there is little room. */
export const valuesText = (detection) =>
  detection.attributes.filter(({ className }) => className !== null).map(({ className }) => className).join(', ');

/** "human 8 left", "human 15 is human 4 again". `classOf` gives an object's class; nothing when it is not known. */
export function eventText({ action, objectId, objectIds }, classOf) {
  const name = (id) => `${classOf(id) ?? 'object'} ${id}`;
  if (action === 'Delete') {
    return `${name(objectId)} left`;
  }
  return objectIds.length === 0 ? `${name(objectId)} is seen again` :
    `${name(objectId)} is ${objectIds.map(name).join(', ')} again`;
}

/** The last part of a path: what a recording is called. */
export const shortPath = (path) => path.split('/').filter((part) => part !== '').pop() ?? path;

/** The place of the last of these ordered numbers that is not above the limit; -1 when all are. */
export function lastNotAfter(numbers, limit) {
  let [before, after] = [-1, numbers.length];
  while (after - before > 1) {
    const middle = Math.floor((before + after) / 2);
    [before, after] = numbers[middle] > limit ? [before, middle] : [middle, after];
  }
  return before;
}

/** A list's new entries, each with its time; those of an object are identified by its number. */
export function listEntries(list, entries) {
  list.replaceChildren(...entries.map(({ when, text, objectId }) => {
    const entry = make('li', {}, make('time', {}, when), ` ${text}`);
    if (objectId !== undefined) {
      entry.dataset.objectId = objectId;
    }
    return entry;
  }));
}
