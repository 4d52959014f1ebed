// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

// Programs of the system: a build with sanitizers leaves this file out, as their runtime would be loaded too late.

#include "process.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

using test::Outcome;
using testing::HasSubstr;

namespace {

const std::string faultless = TARNVOD_PLANTED "/planted_faultless";

}  // namespace

TEST(ARehearsal, ReportsAProgramThatDoesNotCallTheService) {
  const Outcome outcome = test::run({"rehearse", "--", "true"});

  EXPECT_EQ(outcome.exitCode, 1);
  EXPECT_THAT(outcome.output, HasSubstr("It does not call the service on a quiet day, without any fault."));
}

TEST(WhatMustNotBePrinted, FailsTheDay) {
  const Outcome outcome = test::run(
      {"rehearse", "--days", "1", "--must-not-print", "frame", "--", "sh", "-c", "echo a frame; exec " + faultless});

  EXPECT_EQ(outcome.exitCode, 1);
  EXPECT_THAT(outcome.output, HasSubstr("It printed \"frame\""));
}

TEST(AnApplicationThatIgnoresSigterm, IsFoundNotToEnd) {
  const Outcome outcome = test::run({"rehearse", "--days", "1", "--stop-limit", "1", "--", "sh", "-c",
                                     "trap '' TERM; " + faultless + "; sleep 1000"});

  EXPECT_EQ(outcome.exitCode, 1);
  EXPECT_THAT(outcome.output, HasSubstr("It does not end after SIGTERM"));
}
