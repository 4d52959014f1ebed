// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

/** Where a detection's box is, as shares of the picture's width and height; null when a number is missing. */
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

/** The box in units of a picture of this size. */
export const areaOf = (box, width, height) => box && {
  x: box.left * width,
  y: box.top * height,
  width: (box.right - box.left) * width,
  height: (box.bottom - box.top) * height,
};

export const contains = (area, x, y) =>
  x >= area.x && x <= area.x + area.width && y >= area.y && y <= area.y + area.height;

export const overlap = (a, b) =>
  a.x < b.x + b.width && b.x < a.x + a.width && a.y < b.y + b.height && b.y < a.y + a.height;
