// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#ifndef TARNVOD_TESTS_SUPPORT_RETRY_SLEEP_H
#define TARNVOD_TESTS_SUPPORT_RETRY_SLEEP_H

#include <chrono>
#include <vector>

namespace tarn::test {

/**
 * Time for the library's retry thread, advanced by hand. The program defines `nanosleep` itself: while an object of
 * this class lives, each sleep that the library's own code begins lasts until the test ends it. All other code sleeps
 * as ever.
 *
 * One object at a time. Its end lets a sleep that has begun end too, but a test that starts the thread also has to call
 * `releaseAll` before it joins it.
 */
class RetrySleep {
 public:
  RetrySleep();
  ~RetrySleep();
  RetrySleep(const RetrySleep&) = delete;
  RetrySleep& operator=(const RetrySleep&) = delete;

  /**
   * Waits until the library sleeps, which it does not before it has finished what it was doing.
   *
   * @return how long it wants to sleep; throws `std::runtime_error` when it does not go to sleep
   */
  std::chrono::nanoseconds waitUntilAsleep() const;

  /** Waits until the library sleeps, and ends that sleep as if its time had passed. */
  void release();

  /** Waits until the library sleeps, and ends that sleep as a signal does that arrives when this much time is left. */
  void interrupt(std::chrono::nanoseconds remaining);

  /** Ends the present sleep, if any, and from now on each sleep as soon as it begins. */
  void releaseAll();

  /** How long each sleep so far was meant to last, also the present one. */
  std::vector<std::chrono::nanoseconds> requested() const;
};

}  // namespace tarn::test

#endif
