// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

// Text for people. Names come from elsewhere and may hold anything: they only ever become text, never markup.

export const byId = (id) => document.getElementById(id);

/** Makes an element; what stands in it is elements and texts. */
export function make(name, properties = {}, ...content) {
  const element = Object.assign(document.createElement(name), properties);
  element.append(...content);
  return element;
}

export const seconds = (value) => `${value.toFixed(1)} s`;

export const counted = (count, noun) => `${count} ${noun}${count === 1 ? '' : 's'}`;

export const nameOf = (detection) => `${detection.className} ${detection.objectId}`;

export const statusText = (status) =>
  ({ TrackedConfident: 'confident', TrackedUnconfident: 'unconfident' })[status] ?? 'untracked';

export function attributeText({ typeName, className, score }) {
  return typeName + (className === null ? '' : `: ${className}`) + (score === null ? '' : `, ${score}`);
}

/** The attributes' values alone, for where there is little room. */
export const valuesText = (detection) =>
  detection.attributes.filter(({ className }) => className !== null).map(({ className }) => className).join(', ');

export function eventText({ action, objectId, objectIds }) {
  const others = objectIds.length === 0 ? '' : ` with ${objectIds.join(', ')}`;
  return `${action === 'Delete' ? 'deleted' : 'connected'} ${objectId}${others}`;
}

/** A list's new entries, each with when it was. */
export function listEntries(list, entries) {
  list.replaceChildren(...entries.map(({ when, text }) => make('li', {}, make('time', {}, when), ` ${text}`)));
}
