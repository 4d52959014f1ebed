// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "situations.h"
#include "viewer.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <signal.h>

#include <cstdint>
#include <sstream>

using nlohmann::json;
using testing::HasSubstr;
using testing::SizeIs;

namespace {

using ViewOfARecording = test::TwoCameras;

TEST_F(ViewOfARecording, NeedsNoService) {
  const test::Viewer viewer({"--recording", recording}, test::serviceDown());

  EXPECT_EQ(json::parse(viewer.get("/setup.json").body)["mode"], "recording");
  EXPECT_EQ(viewer.get("/events").status, 404);
}

TEST_F(ViewOfARecording, IsNamedWithoutAnOption) {
  const test::Viewer viewer({recording}, {});

  EXPECT_EQ(json::parse(viewer.get("/setup.json").body)["mode"], "recording");
}

TEST_F(ViewOfARecording, ShowsItsOwnBackground) {
  test::writeTo(recording / "background.jpg", "\xFF\xD8\xFFstreet");
  const test::Viewer viewer({recording}, {});

  EXPECT_EQ(json::parse(viewer.get("/setup.json").body)["backgrounds"], (json{{"1", "/background-1"}}));
  EXPECT_EQ(viewer.get("/background-1").body, "\xFF\xD8\xFFstreet");
}

TEST_F(ViewOfARecording, GivesWhatInspectPrintsAndTheTimeOfEachFrame) {
  json overview = json::parse(test::Viewer({"--recording", recording}, {}).get("/recording.json").body);

  ASSERT_THAT(overview["frameSeconds"], SizeIs(test::framesInRecording));
  EXPECT_NEAR(overview["frameSeconds"][19].get<double>(), 1.9, 1e-6);
  EXPECT_EQ(overview["eventList"], (json{{{"action", "Connect"}, {"objectId", 7}, {"objectIds", {9}}, {"frame", 10}}}));
  overview.erase("frameSeconds");
  overview.erase("eventList");
  EXPECT_EQ(overview, json::parse(test::run({"inspect", recording, "--json"}).output));
}

TEST_F(ViewOfARecording, GivesItsFramesAsWatchShowsThem) {
  const test::Outcome watched = test::run({"watch", "--camera", "1", "--frames", "20", "--json"}, playing("20", "0"));
  const test::Viewer viewer({"--recording", recording}, {});

  const json frames = json::parse(viewer.get("/frames.json?first=3&count=5").body);

  ASSERT_THAT(frames, SizeIs(5));
  std::istringstream lines(watched.output);
  std::string line;
  for (int skipped = 0; skipped < 3; ++skipped) {
    std::getline(lines, line);
  }
  for (json frame : frames) {
    std::getline(lines, line);
    for (json& detection : frame["detections"]) {
      // The library spells class names in lower case, and a recording as the detector does.
      detection["className"] = detection["className"] == "Human" ? "human" : detection["className"];
    }
    EXPECT_EQ(frame, json::parse(line));
  }
}

TEST_F(ViewOfARecording, GivesFewerFramesAtItsEndAndNoneBehindIt) {
  const test::Viewer viewer({"--recording", recording}, {});

  EXPECT_THAT(json::parse(viewer.get("/frames.json?first=18&count=100").body), SizeIs(2));
  EXPECT_THAT(json::parse(viewer.get("/frames.json?first=20&count=1").body), SizeIs(0));
  EXPECT_THAT(json::parse(viewer.get("/frames.json?first=18446744073709551615&count=200").body), SizeIs(0));
}

TEST_F(ViewOfARecording, RefusesFramesThatAreNoNumbers) {
  const test::Viewer viewer({"--recording", recording}, {});

  for (const char* query : {"", "?first=1", "?first=-1&count=1", "?first=1&count=x", "?first=1.5&count=1"}) {
    const test::Answer answer = viewer.get("/frames.json" + std::string(query));
    EXPECT_EQ(answer.status, 400) << query;
    EXPECT_THAT(answer.body, HasSubstr("must be a number"));
  }
}

/** A scene of many humans. */
::VOD::Scene crowd(int humans) {
  ::VOD::Scene scene = test::scene(0);
  for (int human = 1; human < humans; ++human) {
    *scene.add_detections() = scene.detections(0);
  }
  return scene;
}

TEST_F(ViewOfARecording, GivesFewerFramesAtOnceWhereTheyAreLarge) {
  test::writeScenes(recording, crowd(1000), 10);
  const test::Viewer viewer({"--recording", recording}, {});

  const json frames = json::parse(viewer.get("/frames.json?first=0&count=10").body);

  EXPECT_THAT(frames, SizeIs(testing::AllOf(testing::Ge(1U), testing::Lt(10U))));
  EXPECT_THAT(frames[0]["detections"], SizeIs(testing::Ge(1000U)));
  EXPECT_EQ(json::parse(viewer.get("/frames.json?first=9&count=10").body).size(), 1U);
}

TEST_F(ViewOfARecording, LeavesOutWhatIsInAFrameThatIsTooLarge) {
  const ::VOD::Scene scene = crowd(20000);
  test::writeScenes(recording, scene, 1);
  const test::Viewer viewer({"--recording", recording}, {});

  const json frames = json::parse(viewer.get("/frames.json?first=0&count=1").body);

  EXPECT_EQ(frames[0]["omittedBytes"], scene.ByteSizeLong());
  EXPECT_THAT(frames[0]["detections"], SizeIs(0));
}

TEST_F(ViewOfARecording, OfEndlessEmptyFramesShowsTheFirstAndKeepsItsMemory) {
  test::writeScenes(recording, {}, 600'000);
  const test::Viewer viewer({"--recording", recording}, {});

  const json overview = json::parse(viewer.get("/recording.json").body);

  EXPECT_EQ(overview["frames"], 600'000);
  EXPECT_THAT(overview["frameSeconds"], SizeIs(500'000));
  EXPECT_LT(viewer.peakMemoryKilobytes(), test::viewerMemoryKilobytes);
}

TEST_F(ViewOfARecording, PassesOverGarbageAndReportsIt) {
  const std::string whole = test::contentsOf(recording / "scenes.pb");
  test::writeTo(recording / "scenes.pb", "\x03\xFF\xFF\xFF" + whole);
  std::filesystem::remove(recording / "scenes.idx");
  const test::Viewer viewer({"--recording", recording}, {});

  const json overview = json::parse(viewer.get("/recording.json").body);
  EXPECT_THAT(overview["frameSeconds"], SizeIs(test::framesInRecording));
  EXPECT_EQ(overview["damageCount"], 1);
  EXPECT_EQ(json::parse(viewer.get("/frames.json?first=0&count=1").body)[0]["timestamp"], 0);
}

TEST_F(ViewOfARecording, ThatIsTakenAwayMeanwhileSaysSo) {
  const test::Viewer viewer({"--recording", recording}, {});
  std::filesystem::remove(recording / "scenes.pb");

  const test::Answer answer = viewer.get("/frames.json?first=0&count=1");

  EXPECT_EQ(answer.status, 500);
  EXPECT_THAT(answer.body, HasSubstr("scenes.pb: offset 0: the scene that was here is gone"));
}

TEST_F(ViewOfARecording, ThatIsMissingNamesIt) {
  const test::Outcome outcome = test::run({"view", "--recording", folder / "missing"});

  EXPECT_EQ(outcome.exitCode, 1);
  EXPECT_TRUE(test::isOneLine(outcome.errors));
  EXPECT_THAT(outcome.errors, HasSubstr((folder / "missing").string()));
}

TEST_F(ViewOfARecording, WhichIsLongEndsAtTheFirstSignalWhileItIsRead) {
  constexpr std::uintmax_t hoursOfEmptyFrames = 64'000'000'000;
  std::filesystem::resize_file(recording / "scenes.pb", hoursOfEmptyFrames);
  test::Process process(test::command(), {"view", "--port", "0", "--recording", recording});
  process.waitUntilOpen(recording / "scenes.pb");

  process.signal(SIGTERM);

  const test::Outcome outcome = process.wait();
  EXPECT_EQ(outcome.exitCode, 1);
  EXPECT_THAT(outcome.output, testing::IsEmpty()) << "no page yet";
  EXPECT_EQ(outcome.errors, "tarnvod: stopped by a signal before the result was complete\n");
}

TEST_F(ViewOfARecording, EndsWhenAsked) {
  test::Viewer viewer({"--recording", recording}, {});

  viewer.process.signal(SIGTERM);

  EXPECT_EQ(viewer.process.wait().exitCode, 0);
}

}  // namespace
