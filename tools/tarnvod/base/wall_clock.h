// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#ifndef TARNVOD_COMMAND_WALL_CLOCK_H
#define TARNVOD_COMMAND_WALL_CLOCK_H

#include <cstdint>

namespace tarn::command {

/** A time by the wall clock. */
struct WallTime {
  std::int64_t microseconds = 0;  ///< since 1970-01-01 UTC
  bool isSet = false;             ///< whether the system says that its clock is synchronized
};

/** The present time. Thread-safe. */
WallTime wallTimeNow();

}  // namespace tarn::command

#endif
