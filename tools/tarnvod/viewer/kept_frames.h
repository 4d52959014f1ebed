// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#ifndef TARNVOD_COMMAND_KEPT_FRAMES_H
#define TARNVOD_COMMAND_KEPT_FRAMES_H

#include "base/clock.h"
#include "base/lock.h"

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <string>

namespace tarn::command {

/**
 * The frames of the last minutes as their texts, for pages that show a moment before they were opened. The oldest are
 * forgotten when they are too old or together too long. Its functions are thread-safe.
 */
class KeptFrames {
 public:
  struct Limits {
    std::chrono::seconds age;
    std::size_t bytes;          ///< of all texts
    std::size_t bytesInAnswer;  ///< an answer has at least one frame
  };
  static constexpr Limits usualLimits{std::chrono::minutes(5), 16U << 20U, 1U << 20U};

  explicit KeptFrames(Limits limits = usualLimits) : limits_(limits) {}

  /** @param json  the frame, as `frameJson` writes it */
  void add(Clock::time_point at, std::string json);

  /**
   * As JSON: `frames`, those that arrived at this time or later, in order, each `{"at": …, "frame": …}`, of many the first;
   * and whether there are `more`. Times are in milliseconds of the command's clock. Frames of the same time are never in
   * different answers.
   */
  std::string since(std::int64_t milliseconds) const;

 private:
  struct Frame {
    Clock::time_point at;
    std::string json;
  };

  const Limits limits_;
  mutable Mutex mutex_;
  std::deque<Frame> frames_ TARNVOD_GUARDED_BY(mutex_);
  std::size_t bytes_ TARNVOD_GUARDED_BY(mutex_) = 0;
};

}  // namespace tarn::command

#endif
