// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#ifndef TARNVOD_HANDLER_FAILURE_LOG_H
#define TARNVOD_HANDLER_FAILURE_LOG_H

#include <cstdint>
#include <limits>

namespace tarn::VOD {

/** Of a run of failures the first is logged as information, and after it every N-th as a warning. */
inline constexpr std::int32_t failuresBetweenWarnings = 5;

/** The count of a run's failures after one more. At the end of its range it continues with a small number of the same
 * place in the interval. */
constexpr std::int32_t countAfterFailure(std::int32_t count) {
  constexpr std::int32_t last = std::numeric_limits<std::int32_t>::max();
  return count == last ? last % failuresBetweenWarnings + 1 : count + 1;
}

/** Logs failed set-ups, throttled. A run of failures is counted over all cameras and ends with a success. */
class FailureLog {
 public:
  void add(const char* failure);
  void endRun() { failures_ = 0; }

 private:
  std::int32_t failures_ = 0;
};

}  // namespace tarn::VOD

#endif
