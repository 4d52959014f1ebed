// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

/** The object that is pointed at, and the one that is selected; among the objects of all cameras. */
export class Selection {
  /** To be called when anything else that is shown was changed. */
  changed;
  #hovered = null;
  #selected = null;

  constructor(changed) {
    this.changed = changed;
  }

  isMarked = (camera, objectId) => this.#is(this.#hovered, camera, objectId) || this.isSelected(camera, objectId);

  isSelected = (camera, objectId) => this.#is(this.#selected, camera, objectId);

  /** Without an object nothing is pointed at. */
  hover(camera, objectId) {
    const hovered = objectId === undefined ? null : { camera, objectId };
    if (this.#hovered?.camera !== hovered?.camera || this.#hovered?.objectId !== hovered?.objectId) {
      this.#hovered = hovered;
      this.changed();
    }
  }

  /** Selects the object, or nothing when it is selected already. */
  toggle(camera, objectId) {
    this.select(camera, this.isSelected(camera, objectId) ? undefined : objectId);
  }

  /** Without an object nothing is selected. */
  select(camera, objectId) {
    this.#selected = objectId === undefined ? null : { camera, objectId };
    this.changed();
  }

  /** Follows the selected object to the number that it has from now on. */
  follow(camera, { action, objectId, objectIds }) {
    if (action === 'Connect' && objectIds.some((each) => this.isSelected(camera, each))) {
      this.select(camera, objectId);
    }
  }

  /** The selected object as text for the address: "CAMERA:OBJECT", or empty. */
  get text() {
    return this.#selected ? `${this.#selected.camera}:${this.#selected.objectId}` : '';
  }

  set text(value) {
    const match = /^(\d+):(\d+)$/.exec(value);
    this.#selected = match ? { camera: Number(match[1]), objectId: Number(match[2]) } : null;
  }

  #is = (which, camera, objectId) => which?.camera === camera && which.objectId === objectId;
}
