// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#ifndef TARNVOD_TESTS_ENDURANCE_INTERLEAVINGS_SCHEDULED_TIME_H
#define TARNVOD_TESTS_ENDURANCE_INTERLEAVINGS_SCHEDULED_TIME_H

#include "scheduler.h"

#include <tarnvod/detail/camera_handle.h>

#include <algorithm>
#include <chrono>
#include <mutex>

namespace tarn::test {

/** The time that cameras live in here: it passes only when their thread has slept, whenever the schedule wants that. */
struct ScheduledTime {
  using Point = VOD::detail::CameraFlow::Time;

  static Point now() { return present; }

  class Condition {
   public:
    void waitUntil(std::unique_lock<std::mutex>& lock, Point time) {
      const auto isNotified = [this, before = notifications_] { return notifications_ != before; };
      lock.unlock();
      if (time == Point::max()) {
        Scheduler::waitUntil(isNotified);
      } else if (!Scheduler::sleepUntil(isNotified)) {
        present = std::max(present, time);
      }
      lock.lock();
    }

    /** With the lock held. */
    void notify() { ++notifications_; }

   private:
    unsigned notifications_ = 0;
  };

 private:
  static inline Point present{std::chrono::hours(1)};
};

}  // namespace tarn::test

#endif
