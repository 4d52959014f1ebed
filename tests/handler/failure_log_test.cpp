// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "handler/failure_log.h"

#include <gtest/gtest.h>

#include <limits>

namespace tarn::VOD {
namespace {

constexpr std::int32_t last = std::numeric_limits<std::int32_t>::max();

/** Counts when the test runs, not when it is compiled. */
std::int32_t countAfter(std::int32_t count) {
  return countAfterFailure(count);
}

TEST(TheCountOfFailures, GrowsByOne) {
  EXPECT_EQ(1, countAfter(0));
  EXPECT_EQ(last, countAfter(last - 1));
}

TEST(TheCountOfFailures, KeepsItsPlaceInTheIntervalAtTheEndOfItsRange) {
  const std::int32_t next = countAfter(last);
  EXPECT_GT(next, 0);  // not the first failure of a run
  EXPECT_LT(next, 2 * failuresBetweenWarnings);
  EXPECT_EQ((std::int64_t{last} + 1) % failuresBetweenWarnings, next % failuresBetweenWarnings);
}

}  // namespace
}  // namespace tarn::VOD
