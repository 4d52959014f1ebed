// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#ifndef TARNVOD_REHEARSAL_FAST_TIME_H
#define TARNVOD_REHEARSAL_FAST_TIME_H

#include <dlfcn.h>
#include <time.h>

#include <cstdint>
#include <optional>

/** Marks the functions that take the place of the C library's. */
#define TARNVOD_REPLACEMENT extern "C" __attribute__((visibility("default")))

/**
 * Time that passes faster than real time, for every clock but those of processors. The functions of the C library that
 * read a clock, sleep, or wait up to a time are replaced by some that use it.
 */
namespace tarn::rehearsal {

/** Nanoseconds. */
using Time = std::int64_t;

/** The function that would run without the replacement. */
template <typename Function>
Function* original(const char* name) {
  return reinterpret_cast<Function*>(::dlsym(RTLD_NEXT, name));
}

/**
 * How many seconds pass in a real one while all threads wait; from the environment variable TARNVOD_REHEARSAL_SPEED, or 1. While threads run
 * they are fewer, see pace.h.
 */
double speed();

/** Whether the clock counts seconds, not the time of a processor. */
bool isFast(clockid_t clock);

Time realNow(clockid_t clock);
Time now(clockid_t clock);

/** Which of the two common clocks a point in time belongs to: they are decades apart. */
clockid_t clockOf(const timespec& time);

/** How long to really wait for a span of this length, at least: it is over when `now` says so. Never 0 for one that is longer. */
Time toReal(Time span);

/** When a wait is over. */
class WaitLimit {
 public:
  /** @param span  none to wait without a limit */
  explicit WaitLimit(std::optional<Time> span);

  bool isOver() const;
  /** How long to really wait, for functions that take null for no limit; valid until the next call. */
  const timespec* realRest();

 private:
  std::optional<Time> end_;
  timespec rest_{};
};

/** The point of the real monotonic clock at which this point of a fast clock is reached. */
timespec realDeadline(clockid_t clock, const timespec& deadline);

Time toTime(const timespec& time);
timespec toTimespec(Time time);

}  // namespace tarn::rehearsal

#endif
