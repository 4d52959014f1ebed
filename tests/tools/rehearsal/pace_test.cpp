// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

// How the time of an application passes, at a speed of 50.

#include "process.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

namespace {

class TheFastTime : public testing::Test {
 protected:
  static void SetUpTestSuite() {
    test::Process process(TARNVOD_PLANTED "/planted_clocks", {},
                          {"LD_PRELOAD=" TARNVOD_REHEARSAL_LIBRARY, "TARNVOD_REHEARSAL_SPEED=50"});
    measured = nlohmann::json::parse(process.wait().output);
  }

  static nlohmann::json measured;
};

nlohmann::json TheFastTime::measured;

TEST_F(TheFastTime, PassesATenthAsFastWhileAThreadComputes) {
  EXPECT_GE(measured["computing"], 4.9);
  EXPECT_LT(measured["computing"], 10);
}

TEST_F(TheFastTime, PassesAtFullSpeedWhileAllThreadsWait) {
  EXPECT_GT(measured["waiting"], 25);
  EXPECT_LT(measured["waiting"], 51);
}

TEST_F(TheFastTime, IsThatOfWaitsAlsoWhenItPassesSlowly) {
  EXPECT_GE(measured["sleep"], 2);
  EXPECT_GE(measured["poll"], 2);
  EXPECT_GE(measured["condition"], 2);
}

}  // namespace
