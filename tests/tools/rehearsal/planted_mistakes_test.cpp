// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "process.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <string>
#include <vector>

using nlohmann::json;
using test::Outcome;

namespace {

std::string planted(const std::string& name) {
  return TARNVOD_PLANTED "/planted_" + name;
}

Outcome rehearse(const std::string& name, std::vector<std::string> options) {
  std::vector<std::string> words{"rehearse", "--json"};
  words.insert(words.end(), options.begin(), options.end());
  words.insert(words.end(), {"--", planted(name)});
  return test::run(words);
}

/** The failure of this kind, on the first day that fails of at most a hundred; null if there is none. */
json failureOf(const std::string& name, const std::string& kind) {
  const Outcome outcome = rehearse(name, {"--days", "100", "--until-failure", "--speed", "100"});
  EXPECT_EQ(outcome.exitCode, 1) << outcome.errors;
  const json report = json::parse(outcome.output);
  for (const json& failure : report["failures"]) {
    if (failure["kind"] == kind) {
      return failure;
    }
  }
  ADD_FAILURE() << "no failure of the kind " << kind << ": " << outcome.output;
  return {{"faults", 1000}};
}

}  // namespace

TEST(AnApplicationThatIgnoresAFailedSetUp, IsFoundToGoBlind) {
  const json failure = failureOf("ignores_setup_result", "blind");

  EXPECT_LE(failure["faults"], 3);
}

TEST(AnApplicationThatBlocksItsCallback, IsFoundToBlock) {
  const json failure = failureOf("blocks_in_callback", "blocks");

  EXPECT_LE(failure["faults"], 3);
}

TEST(AnApplicationThatLeaksAtEachOutage, IsFoundToLeaveMemoryBehind) {
  const json failure = failureOf("leaks_at_outages", "memory");

  EXPECT_LE(failure["faults"], 3);
}

TEST(AnApplicationThatNeverForgetsAnObject, IsFoundToLeaveMemoryBehind) {
  const json failure = failureOf("never_forgets", "memory");

  EXPECT_LE(failure["faults"], 3);
}

TEST(AnApplicationThatDoesNotDeinitialize, IsFoundToCrashAtItsEndWithoutAnyFault) {
  const json failure = failureOf("no_deinitialize", "crash");

  EXPECT_EQ(failure["faults"], 0);
  EXPECT_EQ(failure["sentence"], "It is ended by SIGABRT while it ends on a quiet day, without any fault.");
}

TEST(AnApplicationWithoutMistakes, SurvivesItsDays) {
  const Outcome outcome = rehearse("faultless", {"--days", "12"});

  EXPECT_EQ(outcome.exitCode, 0) << outcome.output << outcome.errors;
  const json report = json::parse(outcome.output);
  EXPECT_EQ(report["survived"], 12);
  EXPECT_GT(report["recoveries"].size(), 0U);
  EXPECT_EQ(report["cameras"], json::parse(R"([{"camera": 1, "classes": ["human"]}])"));
}
