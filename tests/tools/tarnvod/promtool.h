// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#ifndef TARNVOD_TESTS_TOOLS_TARNVOD_PROMTOOL_H
#define TARNVOD_TESTS_TOOLS_TARNVOD_PROMTOOL_H

#include <gtest/gtest.h>

#include <string>

namespace test {

/** Whether Debian's package prometheus is installed. */
bool hasPromtool();

/** Whether Prometheus reads the text, and finds that its metrics are named and described as they should be. */
testing::AssertionResult isAcceptedByPromtool(const std::string& metrics);

/** The value of the sample that begins so, up to the space: `name{label="x"}`; NaN when there is none. */
double sampleOf(const std::string& metrics, const std::string& sample);

}  // namespace test

#endif
