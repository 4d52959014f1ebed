// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

// The functions that read a clock or sleep.

#include "fast_time.h"

#include <sys/time.h>
#include <sys/timerfd.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>

using namespace tarn::rehearsal;

namespace {

constexpr Time second = 1'000'000'000;

/** Sleeps for a span of the fast time. @return what is left of it, after a signal */
Time sleepFor(Time span) {
  static auto* const sleep = original<int(const timespec*, timespec*)>("nanosleep");
  const Time end = now(CLOCK_MONOTONIC) + span;
  for (Time left = span; left > 0; left = end - now(CLOCK_MONOTONIC)) {
    const timespec wanted = toTimespec(toReal(left));
    if (sleep(&wanted, nullptr) != 0) {
      return std::max(Time{1}, end - now(CLOCK_MONOTONIC));
    }
  }
  return 0;
}

bool isValid(const timespec* time) {
  return time != nullptr && time->tv_sec >= 0 && time->tv_nsec >= 0 && time->tv_nsec < second;
}

}  // namespace

TARNVOD_REPLACEMENT int clock_gettime(clockid_t clock, timespec* time) noexcept {
  static auto* const read = original<int(clockid_t, timespec*)>("clock_gettime");
  if (!isFast(clock)) {
    return read(clock, time);
  }
  *time = toTimespec(now(clock));
  return 0;
}

TARNVOD_REPLACEMENT int gettimeofday(timeval* time, void* zone) noexcept {
  static auto* const read = original<int(timeval*, void*)>("gettimeofday");
  const int result = read(time, zone);
  if (result == 0) {
    const Time present = now(CLOCK_REALTIME);
    time->tv_sec = static_cast<time_t>(present / second);
    time->tv_usec = static_cast<suseconds_t>(present % second / 1000);
  }
  return result;
}

TARNVOD_REPLACEMENT time_t time(time_t* result) noexcept {
  const auto present = static_cast<time_t>(now(CLOCK_REALTIME) / second);
  if (result != nullptr) {
    *result = present;
  }
  return present;
}

TARNVOD_REPLACEMENT int nanosleep(const timespec* span, timespec* left) {
  if (!isValid(span)) {
    errno = EINVAL;
    return -1;
  }
  const Time rest = sleepFor(toTime(*span));
  if (rest == 0) {
    return 0;
  }
  if (left != nullptr) {
    *left = toTimespec(rest);
  }
  return -1;  // errno is that of the original
}

TARNVOD_REPLACEMENT int clock_nanosleep(clockid_t clock, int flags, const timespec* time, timespec* left) {
  static auto* const sleep = original<int(clockid_t, int, const timespec*, timespec*)>("clock_nanosleep");
  if (!isFast(clock) || !isValid(time)) {
    return sleep(clock, flags, time, left);
  }
  const bool isAbsolute = (flags & TIMER_ABSTIME) != 0;
  const Time rest = sleepFor(std::max(Time{0}, toTime(*time) - (isAbsolute ? now(clock) : 0)));
  if (rest > 0 && left != nullptr && !isAbsolute) {
    *left = toTimespec(rest);
  }
  return rest > 0 ? EINTR : 0;
}

TARNVOD_REPLACEMENT int usleep(useconds_t microseconds) {
  return sleepFor(Time{microseconds} * 1000) == 0 ? 0 : -1;
}

TARNVOD_REPLACEMENT unsigned sleep(unsigned seconds) {
  return static_cast<unsigned>((sleepFor(Time{seconds} * second) + second - 1) / second);
}

// A timer may expire early where time passes more slowly than at full speed: nobody waits in a function that could wait on.
TARNVOD_REPLACEMENT int timerfd_settime(int descriptor, int flags, const itimerspec* wanted,
                                        itimerspec* before) noexcept {
  static auto* const set = original<int(int, int, const itimerspec*, itimerspec*)>("timerfd_settime");
  if (!isValid(&wanted->it_value) || !isValid(&wanted->it_interval)) {
    return set(descriptor, flags, wanted, before);
  }
  const Time value = toTime(wanted->it_value);
  const bool isAbsolute = (flags & TFD_TIMER_ABSTIME) != 0 && value != 0;
  const Time span = isAbsolute ? std::max(Time{1}, value - now(clockOf(wanted->it_value))) : value;
  const itimerspec real{toTimespec(toReal(toTime(wanted->it_interval))), toTimespec(toReal(span))};
  return set(descriptor, 0, &real, before);
}
