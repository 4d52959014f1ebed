// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#ifndef TARNVOD_COMMAND_UNKEPT_FRAMES_H
#define TARNVOD_COMMAND_UNKEPT_FRAMES_H

#include "fleet/frame_range.h"

#include <cstdint>
#include <vector>

namespace tarn::command {

/**
 * Which numbered frames of a camera could not be kept in the spool. A range of them is given out once all frames before it are
 * kept or given out: if it reached the spool before frames that still wait in memory, those would be missing after a death, although
 * nobody had to know their numbers. Not thread-safe.
 */
class UnkeptFrames {
 public:
  explicit UnkeptFrames(int camera) : camera_(camera) {}

  /** A frame could not be kept. */
  void add(std::uint64_t sequence);
  /** A frame is in the spool. */
  void noteKept(std::uint64_t sequence);

  /** The ranges whose turn it is, each once; without a start. */
  std::vector<FrameRange> take();

 private:
  const int camera_;
  std::uint64_t accounted_ = 0;  ///< up to here, frames are in the spool or were given out
  std::vector<FrameRange> ranges_;
};

}  // namespace tarn::command

#endif
