// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "process.h"
#include "support/temporary_folder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

using test::Outcome;
using testing::HasSubstr;

namespace {

const std::string faultless = TARNVOD_PLANTED "/planted_faultless";
const std::string blind = TARNVOD_PLANTED "/planted_ignores_setup_result";

}  // namespace

TEST(ARehearsal, NeedsAnApplication) {
  const Outcome outcome = test::run({"rehearse"});

  EXPECT_EQ(outcome.exitCode, 2);
  EXPECT_THAT(outcome.errors, HasSubstr("application"));
}

TEST(ARehearsal, ReportsAProgramThatCannotBeStarted) {
  const Outcome outcome = test::run({"rehearse", "--", "/nowhere/application"});

  EXPECT_EQ(outcome.exitCode, 1);
  EXPECT_EQ(outcome.errors, "tarnvod: /nowhere/application: No such file or directory\n");
}

TEST(ARehearsal, RefusesAnExpressionThatIsNone) {
  const Outcome outcome = test::run({"rehearse", "--must-print", "(", "--", "true"});

  EXPECT_EQ(outcome.exitCode, 2);
  EXPECT_THAT(outcome.errors, HasSubstr("--must-print: '(' is not a regular expression"));
}

TEST(ARehearsalWithASchedule, ReportsAMistakeWithItsPlace) {
  const tarn::test::TemporaryFolder folder;
  std::ofstream(folder.path() / "day") << "at 1s vanish\n";
  const Outcome outcome = test::run({"rehearse", "--schedule", folder.path() / "day", "--", faultless});

  EXPECT_EQ(outcome.exitCode, 1);
  EXPECT_THAT(outcome.errors, HasSubstr("day:1:7: expected one of down, "));
}

TEST(ARehearsalWithASchedule, ShowsTheFailureAsASentenceAScheduleAndATest) {
  const tarn::test::TemporaryFolder folder;
  std::ofstream(folder.path() / "day") << "length 25s\nat 2s empty for 1s\nat 5s down for 3s\n";
  const Outcome outcome =
      test::run({"rehearse", "--schedule", folder.path() / "day", "--output", folder.path() / "found", "--", blind});

  EXPECT_EQ(outcome.exitCode, 1);
  EXPECT_THAT(outcome.output,
              HasSubstr("Camera 1 is not set up again when after 5.0 s the service is down for 3 s.\n"));
  std::ifstream schedule(folder.path() / "found" / "blind.schedule");
  EXPECT_EQ(
      std::string(std::istreambuf_iterator<char>(schedule), {}),
      "# Camera 1 is not set up again when after 5.0 s the service is down for 3 s.\nlength 23s\nat 5s down for 3s\n");
  EXPECT_TRUE(std::filesystem::exists(folder.path() / "found" / "blind_test.cpp"));
}

class ADetectorThatChangesItsClasses : public testing::Test {
 protected:
  ADetectorThatChangesItsClasses() { std::ofstream(schedule()) << "length 25s\nat 5s change classes camera 1\n"; }

  std::string schedule() const { return folder_.path() / "day"; }

 private:
  const tarn::test::TemporaryFolder folder_;
};

TEST_F(ADetectorThatChangesItsClasses, IsSurvivedByAnApplicationThatSetsItsCameraUpAgain) {
  const Outcome outcome = test::run({"rehearse", "--schedule", schedule(), "--", faultless});

  EXPECT_EQ(outcome.exitCode, 0) << outcome.output;
  EXPECT_THAT(outcome.output, HasSubstr("1 change"));
}

TEST_F(ADetectorThatChangesItsClasses, FailsOneThatDoesNot) {
  const Outcome outcome = test::run({"rehearse", "--schedule", schedule(), "--", blind});

  EXPECT_EQ(outcome.exitCode, 1);
  EXPECT_THAT(outcome.output, HasSubstr("is not set up again when after 5.0 s the detector of camera 1 restarts with "
                                        "other ids for its classes."));
}

TEST(WhatMustBePrinted, FailsTheDayWhenItIsMissing) {
  const Outcome outcome = test::run({"rehearse", "--days", "1", "--must-print", "a frame", "--", faultless});

  EXPECT_EQ(outcome.exitCode, 1);
  EXPECT_THAT(outcome.output, HasSubstr("It did not print what it must print"));
}

TEST(ACheckThatFails, FailsTheDay) {
  const Outcome outcome = test::run({"rehearse", "--days", "1", "--check", "false", "--", faultless});

  EXPECT_EQ(outcome.exitCode, 1);
  EXPECT_THAT(outcome.output, HasSubstr("The check failed on a quiet day"));
}
