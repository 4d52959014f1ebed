// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "fleet/frame_range.h"

#include <algorithm>

namespace tarn::command {

void addRange(std::vector<FrameRange>& ranges, const FrameRange& range) {
  const auto latest = std::find_if(ranges.rbegin(), ranges.rend(), [&](const FrameRange& each) {
    return each.camera == range.camera && each.start == range.start;
  });
  if (latest != ranges.rend() && latest->last + 1 == range.first) {
    latest->last = range.last;
  } else {
    ranges.push_back(range);
  }
}

}  // namespace tarn::command
