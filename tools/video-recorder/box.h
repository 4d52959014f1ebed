// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#ifndef TARNVOD_VIDEO_RECORDER_BOX_H
#define TARNVOD_VIDEO_RECORDER_BOX_H

namespace recorder {

/** A rectangle in an image: shares of its width and height, 0 to 1, origin top left. */
struct Box {
  float left = 0;
  float top = 0;
  float right = 0;
  float bottom = 0;

  float width() const { return right - left; }
  float height() const { return bottom - top; }
  float centreX() const { return (left + right) / 2; }
  float centreY() const { return (top + bottom) / 2; }
  float area() const { return width() * height(); }
};

/** The area that two boxes share. */
float intersection(const Box& one, const Box& other);

/** The shared area as a share of the area that the two cover together: 1 for equal boxes, 0 for boxes apart. */
float overlap(const Box& one, const Box& other);

Box moved(const Box& box, float dx, float dy);

/** `one` and `other` mixed, `share` of the first. */
Box mixed(const Box& one, const Box& other, float share);

/** The part of the box that lies in the image. */
Box clipped(const Box& box);

}  // namespace recorder

#endif
