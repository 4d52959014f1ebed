// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "handler/failure_log.h"

#include <gtest/gtest.h>

#include <limits>

namespace tarn::VOD {
namespace {

constexpr std::int32_t last = std::numeric_limits<std::int32_t>::max();

TEST(TheCountOfFailures, GrowsByOne) {
  EXPECT_EQ(1, countAfterFailure(0));
  EXPECT_EQ(last, countAfterFailure(last - 1));
}

TEST(TheCountOfFailures, KeepsItsPlaceInTheIntervalAtTheEndOfItsRange) {
  const std::int32_t next = countAfterFailure(last);
  EXPECT_GT(next, 0);  // not the first failure of a run
  EXPECT_LT(next, 2 * failuresBetweenWarnings);
  EXPECT_EQ((std::int64_t{last} + 1) % failuresBetweenWarnings, next % failuresBetweenWarnings);
}

}  // namespace
}  // namespace tarn::VOD
