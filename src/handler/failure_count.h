// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#ifndef TARNVOD_HANDLER_FAILURE_COUNT_H
#define TARNVOD_HANDLER_FAILURE_COUNT_H

#include <cstdint>
#include <limits>

namespace tarn::VOD {

/** Of a run of failures, the first is information and every so many after it a warning; the others are not logged. */
inline constexpr std::int32_t failuresBetweenWarnings = 5;

/** The count of a run's failures after one more. At the end of its range it goes on with a small number of the same
 * place in the interval. */
constexpr std::int32_t countAfterFailure(std::int32_t count) {
  constexpr std::int32_t last = std::numeric_limits<std::int32_t>::max();
  return count == last ? last % failuresBetweenWarnings + 1 : count + 1;
}

}  // namespace tarn::VOD

#endif
