// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "fast_time.h"

#include "pace.h"

#include <algorithm>
#include <cstdlib>

namespace tarn::rehearsal {

namespace {

constexpr Time second = 1'000'000'000;

double readSpeed() {
  const char* const text = std::getenv("TARNVOD_REHEARSAL_SPEED");
  const double value = text == nullptr ? 1 : std::strtod(text, nullptr);
  return value >= 1 && value <= 1000 ? value : 1;
}

/** When the process began to use the clocks. */
struct Beginning {
  Time realtime = realNow(CLOCK_REALTIME);
  Time monotonic = realNow(CLOCK_MONOTONIC);
  Time boottime = realNow(CLOCK_BOOTTIME);

  Time of(clockid_t clock) const {
    return clock == CLOCK_REALTIME || clock == CLOCK_REALTIME_COARSE ? realtime
           : clock == CLOCK_BOOTTIME                                 ? boottime
                                                                     : monotonic;
  }
};

const Beginning& beginning() {
  static const Beginning instance;
  return instance;
}

}  // namespace

double speed() {
  static const double value = readSpeed();
  return value;
}

bool isFast(clockid_t clock) {
  switch (clock) {
    case CLOCK_REALTIME:
    case CLOCK_REALTIME_COARSE:
    case CLOCK_MONOTONIC:
    case CLOCK_MONOTONIC_COARSE:
    case CLOCK_MONOTONIC_RAW:
    case CLOCK_BOOTTIME:
      return true;
    default:
      return false;
  }
}

Time toTime(const timespec& time) {
  return Time{time.tv_sec} * second + Time{time.tv_nsec};
}

timespec toTimespec(Time time) {
  return {static_cast<time_t>(time / second), static_cast<long>(time % second)};
}

Time realNow(clockid_t clock) {
  static auto* const read = original<int(clockid_t, timespec*)>("clock_gettime");
  timespec time{};
  read(clock, &time);
  return toTime(time);
}

Time now(clockid_t clock) {
  return beginning().of(clock) + passedTime();
}

clockid_t clockOf(const timespec& time) {
  const Time value = toTime(time);
  return std::abs(value - now(CLOCK_REALTIME)) < std::abs(value - now(CLOCK_MONOTONIC)) ? CLOCK_REALTIME
                                                                                        : CLOCK_MONOTONIC;
}

Time toReal(Time span) {
  return span <= 0 ? span : std::max(Time{1}, static_cast<Time>(static_cast<double>(span) / speed()));
}

WaitLimit::WaitLimit(std::optional<Time> span) {
  if (span) {
    end_ = passedTime() + *span;
  }
}

bool WaitLimit::isOver() const {
  return end_ && passedTime() >= *end_;
}

const timespec* WaitLimit::realRest() {
  if (!end_) {
    return nullptr;
  }
  rest_ = toTimespec(toReal(std::max(Time{0}, *end_ - passedTime())));
  return &rest_;
}

timespec realDeadline(clockid_t clock, const timespec& deadline) {
  const Time left = std::max(Time{0}, toTime(deadline) - now(clock));
  return toTimespec(realNow(CLOCK_MONOTONIC) + toReal(left));
}

}  // namespace tarn::rehearsal
