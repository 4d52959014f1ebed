// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#ifndef TARNVOD_TESTS_TOOLS_TARNVOD_SCHEMA_CHECK_H
#define TARNVOD_TESTS_TOOLS_TARNVOD_SCHEMA_CHECK_H

#include <gtest/gtest.h>

#include <string>

namespace test {

/** Whether each line, of which there must be some, is valid by the installed JSON Schema that it names. */
testing::AssertionResult matchSchemas(const std::string& lines);

}  // namespace test

#endif
