// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "schema_check.h"

#include "situations.h"

namespace test {

testing::AssertionResult matchSchemas(const std::string& lines) {
  const TemporaryFolder folder;
  writeTo(folder / "lines", lines);
  const Outcome outcome = Process(TARNVOD_VALIDATOR, {TARNVOD_SCHEMAS, folder / "lines"}).wait();
  if (outcome.exitCode != 0 || outcome.output == "0\n") {
    return testing::AssertionFailure() << outcome.output << outcome.errors
                                       << "\n(the check needs Debian's python3-jsonschema)";
  }
  return testing::AssertionSuccess();
}

}  // namespace test
