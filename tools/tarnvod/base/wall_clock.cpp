// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "base/wall_clock.h"

#include <sys/timex.h>

#include <chrono>

namespace tarn::command {
namespace {

/** The kernel's state of the clock, which the service that synchronizes it sets. */
bool isSynchronized() {
  timex query{};
  const int state = adjtimex(&query);
  return state >= 0 && state != TIME_ERROR && (query.status & STA_UNSYNC) == 0;
}

}  // namespace

WallTime wallTimeNow() {
  using std::chrono::microseconds;
  const auto now = std::chrono::system_clock::now().time_since_epoch();
  return {std::chrono::duration_cast<microseconds>(now).count(), isSynchronized()};
}

}  // namespace tarn::command
