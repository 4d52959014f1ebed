// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "fleet/unkept_frames.h"

#include <algorithm>

namespace tarn::command {

void UnkeptFrames::add(std::uint64_t sequence) {
  addRange(ranges_, {camera_, "", sequence, sequence});
}

void UnkeptFrames::noteKept(std::uint64_t sequence) {
  accounted_ = std::max(accounted_, sequence);
}

std::vector<FrameRange> UnkeptFrames::take() {
  const auto byNumber = [](const FrameRange& left, const FrameRange& right) { return left.first < right.first; };
  std::sort(ranges_.begin(), ranges_.end(), byNumber);
  std::vector<FrameRange> taken;
  for (; !ranges_.empty() && ranges_.front().first <= accounted_ + 1; ranges_.erase(ranges_.begin())) {
    accounted_ = std::max(accounted_, ranges_.front().last);
    taken.push_back(ranges_.front());
  }
  return taken;
}

}  // namespace tarn::command
