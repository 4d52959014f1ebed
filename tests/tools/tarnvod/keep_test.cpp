// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "situations.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>
#include <recording/recording_writer.h>
#include <recording/scene_index.h>
#include <recording/segments.h>
#include <signal.h>

#include <filesystem>
#include <string>
#include <thread>
#include <vector>

using nlohmann::json;
using testing::HasSubstr;

namespace {

class RecordingThatKeeps : public test::TwoCameras {
 protected:
  test::Outcome recorded(const std::vector<std::string>& more, const std::string& pace = "10",
                         const std::string& loop = "0", const std::string& frames = "20") const {
    std::vector<std::string> arguments{"record", "--output", out, "--frames", frames};
    arguments.insert(arguments.end(), more.begin(), more.end());
    return test::run(arguments, playing(pace, loop));
  }

  static json summaryOf(const std::filesystem::path& folder) {
    const test::Outcome outcome = test::run({"inspect", folder, "--json"});
    EXPECT_EQ(outcome.exitCode, 0) << outcome.errors;
    return json::parse(outcome.output);
  }

  static std::uint64_t bytesIn(const std::filesystem::path& folder) {
    std::uint64_t bytes = 0;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(folder)) {
      bytes += entry.is_regular_file() ? entry.file_size() : 0;
    }
    return bytes;
  }

  const std::filesystem::path out = folder / "out";
};

TEST_F(RecordingThatKeeps, ASizeNeverExceedsIt) {
  // Fewer frames than the command holds in memory, played once: none is lost, however slow the machine is.
  constexpr int frames = 240;
  const auto played = folder / "played";
  {
    vod::recording::RecordingWriter writer(played, test::detector().SerializeAsString());
    for (int number = 0; number < frames; ++number) {
      writer.append(test::sceneBytes(number));
    }
  }
  const test::Outcome outcome =
      test::run({"record", "--output", out, "--frames", std::to_string(frames), "--camera", "1", "--max-size", "8K"},
                {"TARNVOD_HOST_RECORDINGS=" + played.string(), "TARNVOD_HOST_PACE=max", "TARNVOD_HOST_LOOP=0"});
  EXPECT_EQ(outcome.exitCode, 0) << outcome.errors;
  EXPECT_GT(bytesIn(played), 9U * 1024U);
  EXPECT_LE(bytesIn(out), 9U * 1024U);
  EXPECT_GT(summaryOf(out)["frames"], 30);
}

TEST_F(RecordingThatKeeps, SegmentsIsNotContinuedAsAPlainRecording) {
  ASSERT_EQ(recorded({"--camera", "1", "--keep", "24h"}).exitCode, 0);
  const test::Outcome outcome = recorded({"--camera", "1"});
  EXPECT_EQ(outcome.exitCode, 1);
  EXPECT_TRUE(test::isOneLine(outcome.errors));
  EXPECT_THAT(outcome.errors, HasSubstr(out.string() + ": holds a recording of segments already; go on with --keep"));
  EXPECT_EQ(summaryOf(out)["frames"], 20);
}

TEST_F(RecordingThatKeeps, SegmentsIsNotHiddenByTheRecordingsOfSeveralCameras) {
  ASSERT_EQ(recorded({"--camera", "1", "--keep", "24h"}).exitCode, 0);
  const test::Outcome outcome = recorded({"--camera", "1", "2", "--keep", "24h"});
  EXPECT_EQ(outcome.exitCode, 1);
  EXPECT_EQ(outcome.errors,
            "tarnvod: " + out.string() + ": holds a recording of segments already; name another folder\n");
}

TEST_F(RecordingThatKeeps, NothingOfTheFirstCameraWhenTheSecondCannotBeRecorded) {
  vod::recording::RecordingWriter(out / "camera-2", "");
  const test::Outcome outcome = recorded({"--camera", "1", "2"});
  EXPECT_EQ(outcome.exitCode, 1);
  EXPECT_TRUE(test::isOneLine(outcome.errors));
  EXPECT_THAT(outcome.errors, HasSubstr("camera-2: holds a recording already"));
  EXPECT_FALSE(std::filesystem::exists(out / "camera-1"));
}

TEST_F(RecordingThatKeeps, ATimeHasSegments) {
  EXPECT_EQ(recorded({"--camera", "1", "--keep", "1.6s"}).exitCode, 0);
  EXPECT_GT(vod::recording::partsOf(out).size(), 1U);
  EXPECT_EQ(summaryOf(out)["frames"], 20);
}

TEST_F(RecordingThatKeeps, GoesOnInTheSamePlace) {
  for (int run = 1; run <= 2; ++run) {
    EXPECT_EQ(recorded({"--camera", "1", "--keep", "24h"}).exitCode, 0);
    EXPECT_EQ(summaryOf(out)["frames"], 20 * run);
  }
}

TEST_F(RecordingThatKeeps, SegmentsCanBeRenderedAndPlayedLikeAPlainRecording) {
  ASSERT_EQ(recorded({"--camera", "1", "--max-size", "8K"}).exitCode, 0);
  EXPECT_EQ(test::run({"render", out, "--output", folder / "segments.svg"}).exitCode, 0);
  const test::Outcome played =
      test::run({"record", "--camera", "1", "--output", folder / "again", "--frames", "20"},
                {"TARNVOD_HOST_RECORDINGS=" + out.string(), "TARNVOD_HOST_PACE=max", "TARNVOD_HOST_LOOP=0"});
  EXPECT_EQ(played.exitCode, 0) << played.errors;
  EXPECT_EQ(test::contentsOf(folder / "again" / "scenes.pb"), test::contentsOf(recording / "scenes.pb"));
}

TEST_F(RecordingThatKeeps, AKilledRecorderLosesNothingWhenAnotherGoesOn) {
  {
    test::Process record(test::command(), {"record", "--camera", "1", "--output", out, "--keep", "24h"}, playing());
    test::waitForFirstScene(out / "segment-000001");
    record.signal(SIGKILL);
    record.wait();
  }
  const std::string before = test::contentsOf(out / "segment-000001" / "scenes.pb");
  EXPECT_EQ(recorded({"--camera", "1", "--keep", "24h"}).exitCode, 0);
  EXPECT_EQ(test::contentsOf(out / "segment-000001" / "scenes.pb"), before);
  EXPECT_EQ(vod::recording::partsOf(out).size(), 2U);
}

TEST_F(RecordingThatKeeps, SeveralCamerasHaveAFolderEachAndOneClock) {
  const test::Outcome outcome = recorded({"--camera", "1", "2"}, "10", "0", "40");
  EXPECT_EQ(outcome.exitCode, 0) << outcome.errors;
  vod::recording::SceneIndex first(out / "camera-1");
  vod::recording::SceneIndex second(out / "camera-2");
  EXPECT_EQ(first.size() + second.size(), 40U);
  EXPECT_EQ(first.boot(), second.boot());
}

class ARing : public RecordingThatKeeps {};

TEST_F(ARing, KeepsWhatWasBeforeAnEventAndAfterIt) {
  // The only connection is in the eleventh frame; frames come every 100 ms.
  const test::Outcome outcome =
      recorded({"--camera", "1", "--ring", "10s", "--after", "350ms", "--on", "connected"}, "1");
  EXPECT_EQ(outcome.exitCode, 0) << outcome.errors;
  const json summary = summaryOf(out);
  EXPECT_EQ(summary["events"]["Connect"], 1);
  EXPECT_GE(summary["frames"], 12);
  EXPECT_LE(summary["frames"], 18);
  EXPECT_EQ(vod::recording::partsOf(out).size(), 1U);
}

TEST_F(ARing, OfAClassKeepsEveryFrameThatIsNearOne) {
  EXPECT_EQ(recorded({"--camera", "1", "--ring", "5s", "--on", "class:car"}).exitCode, 0);
  EXPECT_EQ(summaryOf(out)["frames"], 20);
}

TEST_F(ARing, WithoutAnEventKeepsNothing) {
  const test::Outcome outcome = recorded({"--camera", "1", "--ring", "5s", "--on", "class:tram", "deleted"});
  EXPECT_EQ(outcome.exitCode, 0) << outcome.errors;
  EXPECT_THAT(outcome.output, HasSubstr("recorded 0 frames of camera 1"));
  EXPECT_FALSE(std::filesystem::exists(out / "segment-000001"));
}

TEST_F(ARing, KeepsWhatWasBeforeASignal) {
  test::Process record(test::command(), {"record", "--camera", "1", "--output", out, "--ring", "1h", "--on", "signal"},
                       playing());
  while (!std::filesystem::exists(out / "segment-000001")) {
    if (std::filesystem::exists(out)) {  // by then a signal no longer ends it
      record.signal(SIGUSR1);
    }
    std::this_thread::yield();
  }
  test::waitForFirstScene(out / "segment-000001");
  record.signal(SIGTERM);
  EXPECT_EQ(record.wait().exitCode, 0);
  EXPECT_GE(summaryOf(out)["frames"], 1);
}

TEST_F(ARing, KeepsWhatWasBeforeASilence) {
  // The recording ends after 20 frames, and the service falls silent.
  test::Process record(test::command(),
                       {"record", "--camera", "1", "--output", out, "--ring", "1h", "--on", "silence:300ms"},
                       playing("10", "0"));
  test::waitForFirstScene(out / "segment-000001");
  record.signal(SIGTERM);
  EXPECT_EQ(record.wait().exitCode, 0);
  EXPECT_EQ(summaryOf(out)["frames"], 20);
}

struct WrongUse {
  std::vector<std::string> arguments;
  std::string complaint;
};

class WrongUseOfRecord : public RecordingThatKeeps, public testing::WithParamInterface<WrongUse> {};

TEST_P(WrongUseOfRecord, IsNamed) {
  std::vector<std::string> arguments{"--camera", "1"};
  arguments.insert(arguments.end(), GetParam().arguments.begin(), GetParam().arguments.end());
  const test::Outcome outcome = recorded(arguments);
  EXPECT_EQ(outcome.exitCode, 2);
  EXPECT_TRUE(test::isOneLine(outcome.errors));
  EXPECT_THAT(outcome.errors, HasSubstr(GetParam().complaint));
  EXPECT_FALSE(std::filesystem::exists(out));
}

INSTANTIATE_TEST_SUITE_P(
    Options, WrongUseOfRecord,
    testing::Values(WrongUse{{"--keep", "soon"}, "'soon' is not a time"},
                    WrongUse{{"--keep", "0s"}, "'0s' is not a time"},
                    WrongUse{{"--max-size", "1T"}, "'1T' is not a size"},
                    WrongUse{{"--after", "x"}, "'x' is not a time"}, WrongUse{{"--ring", "5s"}, "name one with --on"},
                    WrongUse{{"--on", "signal"}, "--on belongs to --ring"},
                    WrongUse{{"--ring", "5s", "--on", "rain"}, "'rain' is not one of class:NAME"}));

}  // namespace
