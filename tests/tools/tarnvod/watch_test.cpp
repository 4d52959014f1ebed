// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "late_service.h"
#include "schema_check.h"
#include "situations.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>
#include <signal.h>

#include <sstream>

using nlohmann::json;
using testing::Each;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::SizeIs;
using testing::StartsWith;

namespace {

std::vector<std::string> linesOf(const std::string& text) {
  std::vector<std::string> lines;
  std::istringstream stream(text);
  for (std::string line; std::getline(stream, line);) {
    lines.push_back(line);
  }
  return lines;
}

using Watch = test::TwoCameras;

TEST_F(Watch, InAPipeShowsOneLineAFrame) {
  const test::Outcome outcome = test::run({"watch", "--camera", "1", "--frames", "3"}, playing("20"));

  EXPECT_EQ(outcome.exitCode, 0);
  EXPECT_THAT(linesOf(outcome.output), SizeIs(3));
  EXPECT_THAT(linesOf(outcome.output), Each(StartsWith("camera 1  ")));
  EXPECT_THAT(outcome.output, HasSubstr("human 7 score 80 confident ["));
  EXPECT_THAT(outcome.output, HasSubstr("(coat red)"));
  EXPECT_THAT(outcome.errors, HasSubstr("camera 1: 3 frames in "));
}

TEST_F(Watch, AsJsonShowsTheRecordsFieldByField) {
  const test::Outcome outcome = test::run({"watch", "--camera", "2", "--frames", "1", "--json"}, playing());

  EXPECT_EQ(outcome.exitCode, 0);
  const json frame = json::parse(outcome.output);
  EXPECT_EQ(frame["schema"], "tarnvod.frame/1");
  EXPECT_EQ(frame["camera"], 2);
  EXPECT_EQ(frame["timestamp"], 0);
  EXPECT_EQ(frame["events"], json::array());
  ASSERT_EQ(frame["detections"].size(), 2U);
  const json& human = frame["detections"][0];
  EXPECT_EQ(human["objectId"], 7);
  EXPECT_EQ(human["className"], "human");
  EXPECT_EQ(human["score"], 80);
  EXPECT_EQ(human["status"], "TrackedConfident");
  EXPECT_EQ(human["classifications"], json::array());
  EXPECT_EQ(human["attributes"], (json{{{"typeName", "coat"}, {"className", "red"}, {"score", nullptr}}}));
  EXPECT_EQ(frame["detections"][1]["status"], "Untracked");
}

TEST_F(Watch, AsJsonShowsNumbersThatReadBackAsTheSame) {
  const test::Outcome outcome = test::run({"watch", "--camera", "1", "--frames", "11", "--json"}, playing("20"));

  const auto lines = linesOf(outcome.output);
  ASSERT_THAT(lines, SizeIs(11));
  for (int number = 0; number < 11; ++number) {
    const json human = json::parse(lines[static_cast<std::size_t>(number)])["detections"][0];
    const auto sent = test::scene(number).detections(0);
    EXPECT_EQ(human["coord1"].get<float>(), sent.coord_1());
    EXPECT_EQ(human["coord3"].get<float>(), sent.coord_3());
  }
  EXPECT_THAT(lines[0], HasSubstr("\"coord1\":0.1,"));
  EXPECT_EQ(json::parse(lines[10])["events"], (json{{{"action", "Connect"}, {"objectId", 7}, {"objectIds", {9}}}}));
}

TEST_F(Watch, AsJsonPrintsWhatTheSchemaSays) {
  const test::Outcome outcome = test::run({"watch", "--camera", "1", "--frames", "20", "--json"}, playing("20"));

  EXPECT_TRUE(test::matchSchemas(outcome.output));
}

TEST(TheSchemaOfFrames, RejectsOneThatLacksAField) {
  EXPECT_FALSE(test::matchSchemas(R"({"schema":"tarnvod.frame/1","camera":1,"timestamp":1,"detections":[]})"));
}

TEST(TheSchemaOfFrames, RejectsAnEnvelopeThatLacksAField) {
  const std::string start = R"({"schema":"tarnvod.frame/1","camera":1,"timestamp":1,"detections":[],"events":[])";
  EXPECT_TRUE(test::matchSchemas(start + "}"));
  EXPECT_FALSE(test::matchSchemas(start + R"(,"sequence":1})"));
}

TEST_F(Watch, OfSeveralCamerasShowsEach) {
  const test::Outcome outcome = test::run({"watch", "--camera", "1", "2", "--frames", "5", "--json"}, playing("20"));

  EXPECT_EQ(outcome.exitCode, 0);
  int framesOfFirst = 0;
  int framesOfSecond = 0;
  for (const std::string& line : linesOf(outcome.output)) {
    (json::parse(line)["camera"] == 1 ? framesOfFirst : framesOfSecond) += 1;
  }
  EXPECT_EQ(framesOfFirst, 5);
  EXPECT_EQ(framesOfSecond, 5);
}

TEST_F(Watch, TakesCamerasWithoutTheOption) {
  const test::Outcome outcome = test::run({"watch", "2", "--frames", "1", "--json"}, playing());

  EXPECT_EQ(outcome.exitCode, 0);
  EXPECT_EQ(json::parse(outcome.output)["camera"], 2);
}

TEST_F(Watch, WithoutCamerasShowsAllThatTheServiceHas) {
  const test::Outcome outcome = test::run({"watch", "--frames", "1"}, playing("20"));

  EXPECT_EQ(outcome.exitCode, 0);
  EXPECT_THAT(outcome.errors, HasSubstr("camera 1: 1 frame in "));
  EXPECT_THAT(outcome.errors, HasSubstr("camera 2: 1 frame in "));
}

TEST_F(Watch, OfOneClassShowsNoOther) {
  const test::Outcome outcome =
      test::run({"watch", "--camera", "1", "--class", "car", "--frames", "3", "--json"}, playing("20"));

  EXPECT_THAT(outcome.output, HasSubstr("\"car\""));
  EXPECT_THAT(outcome.output, Not(HasSubstr("\"human\"")));
}

TEST_F(Watch, OfAnUnknownClassNamesTheKnownOnes) {
  const test::Outcome outcome = test::run({"watch", "--camera", "1", "--class", "Unicorn"}, playing());

  EXPECT_EQ(outcome.exitCode, 1);
  EXPECT_TRUE(test::isOneLine(outcome.errors));
  EXPECT_THAT(outcome.errors, HasSubstr("'unicorn'"));
  EXPECT_THAT(outcome.errors, HasSubstr("it knows 'car', 'human'"));
}

TEST_F(Watch, OfARegionShowsOnlyWhatIsInIt) {
  const test::Outcome outcome =
      test::run({"watch", "--camera", "1", "--roi", "-0.1,-0.1,0.05,0.05", "--frames", "1", "--json"}, playing());

  EXPECT_EQ(outcome.exitCode, 0);
  const json frame = json::parse(outcome.output);
  ASSERT_EQ(frame["detections"].size(), 1U);
  EXPECT_EQ(frame["detections"][0]["className"], "car");
}

TEST_F(Watch, OfACameraThatIsNotThereFails) {
  const test::Outcome outcome = test::run({"watch", "--camera", "7"}, playing());

  EXPECT_EQ(outcome.exitCode, 1);
  EXPECT_TRUE(test::isOneLine(outcome.errors));
  EXPECT_THAT(outcome.errors, HasSubstr("camera 7"));
}

TEST_F(Watch, EndsByItselfAfterItsTime) {
  const test::Outcome outcome = test::run({"watch", "--camera", "1", "--seconds", "0.3"}, playing("20"));

  EXPECT_EQ(outcome.exitCode, 0);
  EXPECT_THAT(outcome.output, Not(IsEmpty()));
}

TEST_F(Watch, ShowsTimesInMinutesAndSeconds) {
  const test::Outcome outcome = test::run({"watch", "1", "--frames", "2"}, playing("20"));

  EXPECT_THAT(outcome.output, HasSubstr("camera 1  0:00.100  1 object: "));
}

TEST_F(Watch, ReportsTheEndOfARecordingThatIsNotRepeated) {
  test::Process watch(test::command(), {"watch", "1"}, playing("max", "0"));

  watch.waitForErrors("tarnvod: camera 1: the recording has ended; TARNVOD_HOST_LOOP=1 would repeat it\n");

  watch.signal(SIGINT);
  const test::Outcome outcome = watch.wait();
  EXPECT_EQ(outcome.exitCode, 0);
  EXPECT_THAT(outcome.errors, Not(HasSubstr("dropped")));
}

class AHostPlatformWithAWrongValue : public test::TwoCameras,
                                     public testing::WithParamInterface<std::vector<std::string>> {};

TEST_P(AHostPlatformWithAWrongValue, EndsTheCommand) {
  std::vector<std::string> arguments = GetParam();
  if (arguments.front() == "record") {
    arguments.insert(arguments.end(), {"--output", folder / "out"});
  }

  const test::Outcome outcome = test::run(arguments, playing("fast"));

  const std::string error = ": TARNVOD_HOST_PACE is \"fast\"; it must be a positive number or \"max\"\n";
  EXPECT_EQ(outcome.exitCode, 1);
  EXPECT_EQ(outcome.errors, "video_object_detection_subscriber" + error + "tarnvod" + error);
}

INSTANTIATE_TEST_SUITE_P(InEachSubcommand, AHostPlatformWithAWrongValue,
                         testing::Values(std::vector<std::string>{"info"}, std::vector<std::string>{"watch"},
                                         std::vector<std::string>{"watch", "1"},
                                         std::vector<std::string>{"record", "--camera", "1"}));

class WatchAskedToEnd : public test::TwoCameras, public testing::WithParamInterface<int> {};

TEST_P(WatchAskedToEnd, TearsDownAndSumsUp) {
  test::Process watch(test::command(), {"watch", "--camera", "1"}, playing());
  watch.waitForOutput("camera 1  ");

  watch.signal(GetParam());

  const test::Outcome outcome = watch.wait();
  EXPECT_EQ(outcome.exitCode, 0);
  EXPECT_THAT(outcome.errors, HasSubstr("tarnvod: camera 1: "));
  EXPECT_THAT(outcome.errors, HasSubstr(" interruptions\n"));
}

INSTANTIATE_TEST_SUITE_P(BySignal, WatchAskedToEnd, testing::Values(SIGINT, SIGTERM, SIGHUP));

TEST_F(Watch, GoesOnAfterASignalThatWasIgnoredWhenItBegan) {
  test::Process watch("/bin/sh", {"-c", R"(trap '' HUP; exec "$@")", "sh", test::command(), "watch", "--camera", "1"},
                      playing("5"));
  watch.waitForOutput("camera 1  0:00.000");

  watch.signal(SIGHUP);

  watch.waitForMoreOutput("camera 1  0:01.900");
  watch.waitForMoreOutput("camera 1  0:00.000");
  watch.signal(SIGTERM);
  EXPECT_EQ(watch.wait().exitCode, 0);
}

TEST_F(Watch, EndsQuietlyWhenItsReaderGoesAway) {
  test::Process watch(test::command(), {"watch", "--camera", "1", "--json"}, playing());
  watch.waitForOutput("\n");

  watch.stopReading();

  const test::Outcome outcome = watch.wait();
  EXPECT_EQ(outcome.exitCode, 0);
  EXPECT_THAT(outcome.errors, IsEmpty());
}

TEST_F(Watch, OnAFullDiskFails) {
  const test::Outcome outcome = test::runWithOutputTo("/dev/full", {"watch", "--camera", "1"}, playing());

  EXPECT_EQ(outcome.exitCode, 1);
  EXPECT_EQ(outcome.errors, "tarnvod: standard output: No space left on device\n");
}

TEST(WatchOfAServiceThatIsDown, SaysSoAndWaits) {
  test::Process watch(test::command(), {"watch", "--camera", "1"}, test::serviceDown());

  watch.waitForErrors("tarnvod: camera 1: the service does not answer; trying again every 1 s\n");

  watch.signal(SIGINT);
  EXPECT_EQ(watch.wait().exitCode, 0);
}

TEST(WatchOfAServiceThatIsDown, FailsWhenNoFrameHasComeInTime) {
  const test::Outcome outcome = test::run({"watch", "--camera", "1", "--seconds", "0.2"}, test::serviceDown());

  EXPECT_EQ(outcome.exitCode, 1);
  EXPECT_THAT(outcome.errors, HasSubstr("camera 1: no frame came; the service does not answer"));
}

using WatchOfALateService = test::ALateService;

TEST_F(WatchOfALateService, WaitsForItsCamerasWhenNoneIsNamed) {
  test::Process watch(test::command(), {"watch"}, lateBy("1h"));

  watch.waitForErrors("tarnvod: the service does not report its cameras; waiting until it does\n");

  watch.signal(SIGTERM);
  EXPECT_EQ(watch.wait().exitCode, 0);
}

TEST_F(WatchOfALateService, FailsWhenItsCamerasAreNotKnownInTime) {
  const test::Outcome outcome = test::run({"watch", "--seconds", "0.2"}, lateBy("1h"));

  EXPECT_EQ(outcome.exitCode, 1);
  EXPECT_THAT(outcome.errors,
              HasSubstr("the service does not report its cameras; check that it runs, or name cameras\n"));
}

}  // namespace
