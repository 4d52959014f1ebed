// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

// What a rehearsal measures of memory: a build with sanitizers leaves this file out, as their allocator keeps what is freed.

#include "planted_application.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

using nlohmann::json;

TEST(AnApplicationThatLeaksAtEachOutage, IsFoundToLeaveMemoryBehind) {
  const json failure = test::failureOf("leaks_at_outages", "memory");

  EXPECT_LE(failure["faults"], 3);
}

TEST(AnApplicationThatNeverForgetsAnObject, IsFoundToLeaveMemoryBehind) {
  const json failure = test::failureOf("never_forgets", "memory");

  EXPECT_LE(failure["faults"], 3);
}

TEST(AnApplicationWithoutMistakes, SurvivesItsDays) {
  const test::Outcome outcome = test::rehearsePlanted("faultless", {"--days", "12"});

  EXPECT_EQ(outcome.exitCode, 0) << outcome.output << outcome.errors;
  const json report = json::parse(outcome.output);
  EXPECT_EQ(report["survived"], 12);
  EXPECT_GT(report["recoveries"].size(), 0U);
  EXPECT_EQ(report["cameras"], json::parse(R"([{"camera": 1, "classes": ["human"]}])"));
}
