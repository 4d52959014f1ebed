// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#ifndef TARNVOD_COMMAND_LIVENESS_H
#define TARNVOD_COMMAND_LIVENESS_H

#include "base/clock.h"

#include <atomic>
#include <chrono>

namespace tarn::command {

/** Whether a loop still runs. Its functions are thread-safe. */
class Liveness {
 public:
  /** As the watchdog of the units has it. */
  static constexpr std::chrono::seconds limit{30};

  /** To be called at least every few seconds. */
  void note(Clock::time_point now) { latest_ = now.time_since_epoch().count(); }

  /** Whether the last call of `note` is longer ago than the limit. */
  bool isStalled(Clock::time_point now) const { return now.time_since_epoch() - Clock::duration(latest_) > limit; }

 private:
  std::atomic<Clock::rep> latest_{Clock::now().time_since_epoch().count()};
};

}  // namespace tarn::command

#endif
