// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

// Protocol Buffers by hand, for recordings that the tests make.

function varint(value) {
  const bytes = [];
  let rest = value;
  for (; rest > 127; rest = Math.floor(rest / 128)) {
    bytes.push((rest % 128) + 128);
  }
  return Buffer.from([...bytes, rest]);
}

export const number = (field, value) => Buffer.concat([varint(field << 3), varint(value)]);

export function float(field, value) {
  const bytes = Buffer.alloc(5);
  bytes[0] = (field << 3) | 5;
  bytes.writeFloatLE(value, 1);
  return bytes;
}

/** A text or a message. */
export function long(field, ...parts) {
  const bytes = Buffer.concat(parts.map((part) => Buffer.from(part)));
  return Buffer.concat([varint((field << 3) | 2), varint(bytes.length), bytes]);
}

/** A message as it stands in a file of scenes. */
export const delimited = (message) => Buffer.concat([varint(message.length), message]);
