// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "situations.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

using nlohmann::json;
using testing::HasSubstr;
using testing::IsEmpty;

namespace {

using Info = test::TwoCameras;

TEST_F(Info, PrintsTheServiceAndTheDetectorOfEachCamera) {
  const test::Outcome outcome = test::run({"info"}, playing());

  EXPECT_EQ(outcome.exitCode, 0);
  EXPECT_THAT(outcome.output, HasSubstr("service version"));
  EXPECT_THAT(outcome.output, HasSubstr("channels             2\n"));
  EXPECT_THAT(outcome.output, HasSubstr("compute chip         CPU\n"));
  EXPECT_THAT(outcome.output, HasSubstr("human"));
  EXPECT_THAT(outcome.output, HasSubstr("coat"));
  EXPECT_THAT(outcome.output, HasSubstr("a 0.1  b 0  c 0"));
  EXPECT_THAT(outcome.errors, IsEmpty());
}

TEST_F(Info, AsJsonHoldsTheSame) {
  const json info = json::parse(test::run({"info", "--json"}, playing()).output);

  EXPECT_EQ(info["service"]["enabled"], true);
  EXPECT_EQ(info["service"]["channels"], 2);
  ASSERT_EQ(info["detectors"].size(), 2U);
  const json& detector = info["detectors"][0];
  EXPECT_EQ(detector["computeChip"], "CPU");
  EXPECT_EQ(detector["fishEyeMountingPosition"], nullptr);
  EXPECT_EQ(detector["reidStatus"], "REID_NOT_RUNNING");
  EXPECT_EQ(detector["classes"], (json{{"human", 0}, {"car", 1}}));
  EXPECT_EQ(detector["supportedAttributes"], (json{{"coat", {"red"}}}));
  EXPECT_EQ(detector["attributesPerClass"]["Human"], (json{{"coat", {"red"}}}));
  EXPECT_EQ(detector["calibrations"]["car"][0]["coefficientA"].get<float>(), 0.1F);
}

TEST_F(Info, OfOneCameraHoldsItsDetectorOnly) {
  const json info = json::parse(test::run({"info", "--camera", "2", "--json"}, playing()).output);

  EXPECT_EQ(info["detectors"].size(), 1U);
}

TEST_F(Info, OfACameraThatIsNotThereNamesThoseThatAre) {
  const test::Outcome outcome = test::run({"info", "--camera", "3"}, playing());

  EXPECT_EQ(outcome.exitCode, 1);
  EXPECT_TRUE(test::isOneLine(outcome.errors));
  EXPECT_THAT(outcome.errors, HasSubstr("camera 3"));
  EXPECT_THAT(outcome.errors, HasSubstr("cameras 1 to 2"));
}

TEST_F(Info, OfAFileAsksNoService) {
  const std::string file = recording / "detector-information.pb";
  const test::Outcome outcome = test::run({"info", "--file", file}, test::serviceDown());

  EXPECT_EQ(outcome.exitCode, 0);
  EXPECT_THAT(outcome.output, HasSubstr("human"));
  EXPECT_THAT(outcome.errors, IsEmpty());
}

TEST_F(Info, OfAMissingFileNamesIt) {
  const test::Outcome outcome = test::run({"info", "--file", folder / "missing"});

  EXPECT_EQ(outcome.exitCode, 1);
  EXPECT_TRUE(test::isOneLine(outcome.errors));
  EXPECT_THAT(outcome.errors, HasSubstr(folder / "missing"));
}

TEST_F(Info, OfAFileThatIsNotDetectorInformationSaysSo) {
  test::writeTo(folder / "garbage", "This is no message at all.");
  const test::Outcome outcome = test::run({"info", "--file", folder / "garbage"});

  EXPECT_EQ(outcome.exitCode, 1);
  EXPECT_TRUE(test::isOneLine(outcome.errors));
  EXPECT_THAT(outcome.errors, HasSubstr("this is not detector information"));
}

TEST_F(Info, OnAFullDiskFails) {
  const test::Outcome outcome = test::runWithOutputTo("/dev/full", {"info"}, playing());

  EXPECT_EQ(outcome.exitCode, 1);
  EXPECT_EQ(outcome.errors, "tarnvod: standard output: No space left on device\n");
}

TEST(InfoOfAServiceThatIsDown, FailsAndSaysWhat) {
  const test::Outcome outcome = test::run({"info", "--camera", "1"}, test::serviceDown());

  EXPECT_EQ(outcome.exitCode, 1);
  EXPECT_THAT(outcome.errors, HasSubstr("tarnvod: camera 1: the service does not describe its detector"));
}

}  // namespace
