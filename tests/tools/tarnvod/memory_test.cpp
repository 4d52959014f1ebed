// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "situations.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <recording/recording_writer.h>

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

namespace {

/** A subcommand with its arguments; `IN` stands for a recording, `OUT` for a path that does not exist. */
using Work = std::vector<std::string>;

/** A frame of ten humans who move, each with an attribute. */
std::string largeFrame(int number) {
  ::VOD::Scene scene = test::scene(number);
  const ::VOD::Detection human = scene.detections(0);
  constexpr int humans = 10;
  constexpr int places = 800;
  scene.clear_detections();
  for (int object = 0; object < humans; ++object) {
    ::VOD::Detection& detection = *scene.add_detections();
    detection = human;
    detection.set_object_id(static_cast<std::uint32_t>(object));
    detection.set_coord_1(0.001F * static_cast<float>((number + 37 * object) % places));
    detection.set_coord_3(detection.coord_1() + 0.1F);
  }
  return scene.SerializeAsString();
}

/** Two recordings, one of which is ten times as long as the other. */
class WorkOnALongRecording : public testing::TestWithParam<Work> {
 protected:
  void SetUp() override {
    if (!std::filesystem::exists(TARNVOD_TIME)) {
      GTEST_SKIP() << "needs Debian's package time";
    }
  }

  static constexpr int fewFrames = 2'500;
  static constexpr int manyFrames = 10 * fewFrames;

  /** The most memory that the subcommand has for a recording of so many frames, in kilobytes. */
  long peakOfWorkOn(int frames) const {
    const std::filesystem::path recording = recordingOf(frames);
    const std::filesystem::path peak = folder_ / "peak";
    Work words{"--format", "%M", "--output", peak, test::command()};
    for (const std::string& word : GetParam()) {
      words.push_back(word == "IN" ? recording.string() : word == "OUT" ? recording.string() + "-out" : word);
    }
    const test::Outcome outcome = test::Process(TARNVOD_TIME, words).wait();
    EXPECT_EQ(outcome.exitCode, 0) << outcome.errors;
    return std::stol(test::contentsOf(peak));
  }

 private:
  std::filesystem::path recordingOf(int frames) const {
    const std::filesystem::path recording = folder_ / std::to_string(frames);
    vod::recording::RecordingWriter writer(recording, test::detector().SerializeAsString());
    for (int number = 0; number < frames; ++number) {
      writer.append(largeFrame(number), {1'000 + number, 1'000 + number});
    }
    return recording;
  }

  const test::TemporaryFolder folder_;
};

TEST_P(WorkOnALongRecording, NeedsNoMoreMemoryThanOnAShortOne) {
  // What fills up to a bound, as a cache or a chunk does; the long recording itself has 12 MB.
  constexpr long allowance = 5'000;
  constexpr long limit = 32 * 1024;

  const long few = peakOfWorkOn(fewFrames);
  const long many = peakOfWorkOn(manyFrames);

  EXPECT_LT(many, few + allowance);
  EXPECT_LT(many, limit);
}

INSTANTIATE_TEST_SUITE_P(OfASubcommand, WorkOnALongRecording,
                         testing::Values(Work{"inspect", "IN"}, Work{"compare", "IN", "IN"},
                                         Work{"render", "IN", "--frame", "2500", "--output", "OUT"},
                                         Work{"export", "IN", "--format", "csv", "--output", "OUT"},
                                         Work{"export", "IN", "--format", "mot", "--size", "4x3", "--output", "OUT"},
                                         Work{"export", "IN", "--format", "sqlite", "--output", "OUT"},
                                         Work{"export", "IN", "--format", "mcap", "--output", "OUT"},
                                         Work{"cut", "IN", "--from", "1", "--output", "OUT"},
                                         Work{"merge", "IN", "IN", "--output", "OUT"},
                                         Work{"repair", "IN", "--output", "OUT"}));

}  // namespace
