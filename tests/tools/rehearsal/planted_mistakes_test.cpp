// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "planted_application.h"

#include <gtest/gtest.h>

using nlohmann::json;
using test::failureOf;

TEST(AnApplicationThatIgnoresAFailedSetUp, IsFoundToGoBlind) {
  const json failure = failureOf("ignores_setup_result", "blind");

  EXPECT_LE(failure["faults"], 3);
}

TEST(AnApplicationThatBlocksItsCallback, IsFoundToBlock) {
  const json failure = failureOf("blocks_in_callback", "blocks");

  EXPECT_LE(failure["faults"], 3);
}

TEST(AnApplicationThatDoesNotDeinitialize, IsFoundToCrashAtItsEndWithoutAnyFault) {
  const json failure = failureOf("no_deinitialize", "crash");

  EXPECT_EQ(failure["faults"], 0);
  EXPECT_EQ(failure["sentence"], "It is ended by SIGABRT while it ends on a quiet day, without any fault.");
}
