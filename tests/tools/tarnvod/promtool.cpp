// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "promtool.h"

#include "situations.h"

#include <limits>

namespace test {
namespace {

constexpr const char* promtool = "/usr/bin/promtool";

}  // namespace

bool hasPromtool() {
  return std::filesystem::exists(promtool);
}

testing::AssertionResult isAcceptedByPromtool(const std::string& metrics) {
  const TemporaryFolder folder;
  writeTo(folder / "metrics", metrics);
  const Outcome outcome =
      Process("/bin/sh", {"-c", R"("$0" check metrics <"$1")", promtool, folder / "metrics"}).wait();
  if (metrics.empty() || outcome.exitCode != 0 || !outcome.errors.empty()) {
    return testing::AssertionFailure() << outcome.output << outcome.errors << metrics;
  }
  return testing::AssertionSuccess();
}

double sampleOf(const std::string& metrics, const std::string& sample) {
  const std::string text = '\n' + metrics;
  const std::size_t at = text.find('\n' + sample + ' ');
  return at == std::string::npos ? std::numeric_limits<double>::quiet_NaN()
                                 : std::stod(text.substr(at + sample.size() + 2));
}

}  // namespace test
