// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "video-recorder/box.h"

#include <algorithm>

namespace recorder {

float intersection(const Box& one, const Box& other) {
  const float width = std::min(one.right, other.right) - std::max(one.left, other.left);
  const float height = std::min(one.bottom, other.bottom) - std::max(one.top, other.top);
  return width > 0 && height > 0 ? width * height : 0;
}

float overlap(const Box& one, const Box& other) {
  const float shared = intersection(one, other);
  return shared > 0 ? shared / (one.area() + other.area() - shared) : 0;
}

Box moved(const Box& box, float dx, float dy) {
  return {box.left + dx, box.top + dy, box.right + dx, box.bottom + dy};
}

Box mixed(const Box& one, const Box& other, float share) {
  const auto mix = [share](float a, float b) { return share * a + (1 - share) * b; };
  return {mix(one.left, other.left), mix(one.top, other.top), mix(one.right, other.right),
          mix(one.bottom, other.bottom)};
}

Box clipped(const Box& box) {
  const auto clip = [](float value) { return std::clamp(value, 0.0F, 1.0F); };
  return {clip(box.left), clip(box.top), clip(box.right), clip(box.bottom)};
}

}  // namespace recorder
