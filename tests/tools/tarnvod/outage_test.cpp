// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "situations.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <signal.h>

using testing::HasSubstr;
using testing::Not;

namespace {

using AnOutage = test::TwoCameras;

TEST_F(AnOutage, IsReportedByWatchAndSoIsItsEnd) {
  test::Process watch(test::commandWithServiceSwitch(), {"watch", "--camera", "1"}, playing());
  watch.waitForOutput("human 7");

  watch.write("down");
  watch.waitForErrors("tarnvod: camera 1: no frame for ");
  watch.waitForErrors("the service does not answer; trying again every 1 s\n");
  watch.write("up");

  watch.waitForErrors("tarnvod: camera 1: frames are back after ");
  watch.signal(SIGINT);
  const test::Outcome outcome = watch.wait();
  EXPECT_EQ(outcome.exitCode, 0);
  EXPECT_THAT(outcome.errors, HasSubstr("1 interruption\n"));
}

TEST_F(AnOutage, LeavesTheClassesThatWereAskedForAsTheyWere) {
  test::Process watch(test::commandWithServiceSwitch(), {"watch", "--camera", "1", "--class", "human"}, playing());
  watch.waitForOutput("human 7");
  watch.write("down");
  watch.waitForErrors("does not answer");
  watch.write("up");
  watch.waitForErrors("frames are back");

  watch.waitForMoreOutput("human 7");

  EXPECT_THAT(watch.output(), Not(HasSubstr("0 objects")));
  EXPECT_THAT(watch.output(), Not(HasSubstr("car")));
}

TEST_F(AnOutage, IsShownInTheTable) {
  test::Process watch(test::commandWithServiceSwitch(), {"watch", "--camera", "1", "2"}, playing(),
                      test::Process::Output::Terminal);
  watch.waitForOutput("confident");

  watch.write("down");
  watch.waitForMoreOutput("the service does not answer; trying again every 1 s");
  watch.write("up");
  watch.waitForMoreOutput("last frame 0.0 s ago");

  watch.signal(SIGINT);
  EXPECT_EQ(watch.wait().exitCode, 0);
}

TEST_F(AnOutage, DoesNotEndARecording) {
  test::Process record(test::commandWithServiceSwitch(),
                       {"record", "--camera", "1", "--output", folder / "out", "--frames", "25"}, playing());

  test::waitForFirstScene(folder / "out");
  record.write("down");
  record.waitForErrors("the service dropped the subscription; trying again every 1 s\n");
  record.write("up");
  record.waitForErrors("subscribed again\n");

  EXPECT_EQ(record.wait().exitCode, 0);
  EXPECT_THAT(test::run({"inspect", folder / "out"}).output, HasSubstr("frames               25"));
}

}  // namespace
