// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#ifndef TARNVOD_COMMAND_FRAME_RANGE_H
#define TARNVOD_COMMAND_FRAME_RANGE_H

#include <cstdint>
#include <string>
#include <tuple>
#include <vector>

namespace tarn::command {

/** Consecutive frames of one camera and one start. */
struct FrameRange {
  int camera = 0;
  std::string start;
  std::uint64_t first = 0;  ///< sequence number
  std::uint64_t last = 0;   ///< likewise; not less than the first

  std::uint64_t count() const { return last - first + 1; }
};

inline bool operator==(const FrameRange& left, const FrameRange& right) {
  return std::tie(left.camera, left.start, left.first, left.last) ==
         std::tie(right.camera, right.start, right.first, right.last);
}

/** Adds a range; joins it with the latest of its camera and start if it follows that without a gap. */
void addRange(std::vector<FrameRange>& ranges, const FrameRange& range);

}  // namespace tarn::command

#endif
