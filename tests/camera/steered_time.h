// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#ifndef TARNVOD_TESTS_CAMERA_STEERED_TIME_H
#define TARNVOD_TESTS_CAMERA_STEERED_TIME_H

#include <tarnvod/detail/camera_handle.h>

#include <chrono>
#include <mutex>

namespace tarn::test {

/** The time that cameras under test live in: it stands still until the test lets it pass. */
struct SteeredTime {
  using Point = VOD::detail::CameraFlow::Time;
  using Duration = VOD::detail::CameraFlow::Duration;

  static Point now();

  /**
   * Lets time pass up to the next point for which the cameras' thread waits, or up to the end of the duration, whichever
   * is first, and waits until the thread has done all that was due.
   *
   * @return what is left of the duration
   */
  static Duration step(Duration duration);

  /** Waits until the cameras' thread waits for something that is yet to come. Throws `std::runtime_error` if it does not. */
  static void settle();

  /** Moves the time without waiting for the cameras' thread. */
  static void jump(Duration duration);

  class Condition {
   public:
    void waitUntil(std::unique_lock<std::mutex>& lock, Point time);
    void notify();
  };
};

}  // namespace tarn::test

#endif
