// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "planted_application.h"

#include <gtest/gtest.h>

namespace test {

using nlohmann::json;

Outcome rehearsePlanted(const std::string& name, const std::vector<std::string>& options) {
  std::vector<std::string> words{"rehearse", "--json"};
  words.insert(words.end(), options.begin(), options.end());
  words.insert(words.end(), {"--", TARNVOD_PLANTED "/planted_" + name});
  return run(words);
}

json failureOf(const std::string& name, const std::string& kind) {
  const Outcome outcome = rehearsePlanted(name, {"--days", "100", "--until-failure", "--speed", "100"});
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

}  // namespace test
