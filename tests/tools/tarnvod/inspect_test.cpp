// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "base/text.h"
#include "situations.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>
#include <signal.h>

#include <algorithm>
#include <clocale>
#include <cstdint>
#include <sstream>

using nlohmann::json;
using testing::HasSubstr;
using testing::IsEmpty;

namespace {

using Inspect = test::TwoCameras;

TEST_F(Inspect, SummarizesARecording) {
  const test::Outcome outcome = test::run({"inspect", recording});

  EXPECT_EQ(outcome.exitCode, 0);
  EXPECT_THAT(outcome.errors, IsEmpty());
  EXPECT_THAT(outcome.output, HasSubstr("duration             1.9 s\n"));
  EXPECT_THAT(outcome.output, HasSubstr("frames               20, 10.0 per second\n"));
  EXPECT_THAT(outcome.output, HasSubstr("20 detections of 1 object"));
  EXPECT_THAT(outcome.output, HasSubstr("0 deleted, 1 connected"));
  EXPECT_THAT(outcome.output, HasSubstr("damage               none\n"));
}

TEST_F(Inspect, AsJsonListsEachObject) {
  const json summary = json::parse(test::run({"inspect", recording, "--json"}).output);

  EXPECT_EQ(summary["frames"], 20);
  EXPECT_EQ(summary["events"], (json{{"Delete", 0}, {"Connect", 1}}));
  EXPECT_EQ(summary["damage"], json::array());
  ASSERT_EQ(summary["objects"].size(), 2U);
  EXPECT_EQ(summary["objects"][1]["objectId"], 9);
  EXPECT_EQ(summary["objects"][1]["className"], "car");
  EXPECT_EQ(summary["objects"][1]["frames"], 10);
  EXPECT_EQ(summary["objects"][1]["firstFrame"], 1);
  EXPECT_EQ(summary["objects"][1]["lastFrame"], 19);
}

TEST_F(Inspect, OfARecordingThatIsCutOffNamesFileAndOffsetAndSummarizesTheRest) {
  const auto file = recording / "scenes.pb";
  const std::string bytes = test::contentsOf(file);
  const std::size_t lastScene = test::sceneBytes(test::framesInRecording - 1).size() + 1;
  test::writeTo(file, bytes.substr(0, bytes.size() - 3));

  const test::Outcome outcome = test::run({"inspect", recording});

  EXPECT_EQ(outcome.exitCode, 1);
  EXPECT_TRUE(test::isOneLine(outcome.errors));
  EXPECT_THAT(outcome.errors, HasSubstr(file.string() + ": offset " + std::to_string(bytes.size() - lastScene)));
  EXPECT_THAT(outcome.errors, HasSubstr("cut off"));
  EXPECT_THAT(outcome.output, HasSubstr("frames               19"));
}

TEST_F(Inspect, OfARecordingWithGarbageNamesTheFrame) {
  std::filesystem::remove(recording / "scenes.idx");
  test::writeTo(recording / "scenes.pb", "\x02\x08\x01\x03\xFF\xFF\xFF\x02\x08\x02");

  const test::Outcome outcome = test::run({"inspect", recording});

  EXPECT_EQ(outcome.exitCode, 1);
  EXPECT_THAT(outcome.errors, HasSubstr("scenes.pb: offset 3: frame 2 is not a serialized VOD.Scene"));
  EXPECT_THAT(outcome.output, HasSubstr("frames               2"));
}

TEST_F(Inspect, ReadsOnBehindDamageWithTheIndex) {
  std::string bytes = test::contentsOf(recording / "scenes.pb");
  const std::size_t begin = test::sceneBytes(0).size() + 1;
  bytes.replace(begin, 12, std::string(12, '\xff'));
  test::writeTo(recording / "scenes.pb", bytes);

  const test::Outcome outcome = test::run({"inspect", recording});

  EXPECT_EQ(outcome.exitCode, 1);
  EXPECT_THAT(outcome.errors, HasSubstr("scenes.pb: offset " + std::to_string(begin)));
  EXPECT_THAT(outcome.errors, HasSubstr("1 frame lost, goes on at offset"));
  EXPECT_THAT(outcome.output, HasSubstr("frames               19"));
}

TEST_F(Inspect, OfARecordingWithoutDetectorInformationSaysSo) {
  std::filesystem::remove(recording / "detector-information.pb");

  const test::Outcome outcome = test::run({"inspect", recording});

  EXPECT_EQ(outcome.exitCode, 1);
  EXPECT_TRUE(test::isOneLine(outcome.errors));
  EXPECT_THAT(outcome.errors, HasSubstr("detector-information.pb: offset 0: No such file or directory"));
}

TEST_F(Inspect, FitsInto80Columns) {
  std::setlocale(LC_CTYPE, "C.UTF-8");
  const test::Outcome outcome = test::run({"inspect", recording}, {"LC_ALL=C.UTF-8"});

  std::istringstream table(outcome.output.substr(outcome.output.find("  object  ")));
  for (std::string line; std::getline(table, line);) {
    EXPECT_LE(tarn::command::displayWidth(line), 80U) << line;
  }
}

TEST_F(Inspect, OutsideOfAUtf8LocaleIsAscii) {
  EXPECT_THAT(test::run({"inspect", recording}, {"LC_ALL=C.UTF-8"}).output, HasSubstr("━"));

  const std::string output = test::run({"inspect", recording}, {"LC_ALL=C"}).output;

  EXPECT_THAT(output, HasSubstr("======"));
  EXPECT_TRUE(
      std::all_of(output.begin(), output.end(), [](char byte) { return static_cast<unsigned char>(byte) < 0x80; }));
}

class WorkWithoutAnEnd : public test::TwoCameras, public testing::WithParamInterface<const char*> {
 protected:
  std::vector<std::string> arguments() const {
    std::vector<std::string> result{GetParam(), recording};
    if (result.front() == "render") {
      result.insert(result.end(), {"--output", folder / "picture.svg"});
    }
    return result;
  }
};

TEST_P(WorkWithoutAnEnd, EndsAtTheFirstSignal) {
  constexpr std::uintmax_t hoursOfEmptyFrames = 64'000'000'000;
  std::filesystem::resize_file(recording / "scenes.pb", hoursOfEmptyFrames);
  test::Process process(test::command(), arguments());
  process.waitUntilOpen(recording / "scenes.pb");

  process.signal(SIGTERM);

  const test::Outcome outcome = process.wait();
  EXPECT_EQ(outcome.exitCode, 1);
  EXPECT_EQ(outcome.errors, "tarnvod: stopped by a signal before the result was complete\n");
}

INSTANTIATE_TEST_SUITE_P(OfASubcommand, WorkWithoutAnEnd, testing::Values("inspect", "render"));

TEST_F(Inspect, OfAMissingFolderNamesIt) {
  const test::Outcome outcome = test::run({"inspect", folder / "missing"});

  EXPECT_EQ(outcome.exitCode, 1);
  EXPECT_TRUE(test::isOneLine(outcome.errors));
  EXPECT_THAT(outcome.errors, HasSubstr((folder / "missing").string()));
}

TEST_F(Inspect, OnAFullDiskFails) {
  const test::Outcome outcome = test::runWithOutputTo("/dev/full", {"inspect", recording});

  EXPECT_EQ(outcome.exitCode, 1);
  EXPECT_EQ(outcome.errors, "tarnvod: standard output: No space left on device\n");
}

}  // namespace
