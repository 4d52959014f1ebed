// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "full_disk.h"
#include "situations.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <signal.h>

using testing::HasSubstr;
using testing::IsEmpty;

namespace {

constexpr const char* scenes = "scenes.pb";
constexpr const char* information = "detector-information.pb";

class Record : public test::TwoCameras {
 protected:
  std::vector<std::string> recording20Frames() const {
    return {"record", "--camera", "1", "--output", folder / "out", "--frames", std::to_string(test::framesInRecording)};
  }
};

TEST_F(Record, OfAReplayGivesTheSameBytes) {
  const test::Outcome outcome = test::run(recording20Frames(), playing("max", "0"));

  EXPECT_EQ(outcome.exitCode, 0);
  EXPECT_THAT(outcome.output, HasSubstr("recorded 20 frames of camera 1 in "));
  EXPECT_THAT(outcome.errors, IsEmpty());
  EXPECT_EQ(test::contentsOf(folder / "out" / scenes), test::contentsOf(recording / scenes));
  EXPECT_EQ(test::contentsOf(folder / "out" / information), test::contentsOf(recording / information));
}

TEST_F(Record, StopsAfterItsTime) {
  const test::Outcome outcome =
      test::run({"record", "--camera", "2", "--output", folder / "out", "--seconds", "0.3"}, playing("10"));

  EXPECT_EQ(outcome.exitCode, 0);
  EXPECT_EQ(test::run({"inspect", folder / "out"}).exitCode, 0);
}

class RecordAskedToEnd : public test::TwoCameras, public testing::WithParamInterface<int> {};

TEST_P(RecordAskedToEnd, LeavesAReadableRecording) {
  test::Process record(test::command(), {"record", "--camera", "1", "--output", folder / "out"}, playing());
  test::waitForFirstScene(folder / "out");

  record.signal(GetParam());
  record.wait();

  const test::Outcome inspected = test::run({"inspect", folder / "out"});
  EXPECT_EQ(inspected.exitCode, 0) << inspected.errors;
}

INSTANTIATE_TEST_SUITE_P(BySignal, RecordAskedToEnd, testing::Values(SIGINT, SIGTERM, SIGKILL));

TEST_F(Record, ShowsItsProgressOnATerminal) {
  // A shell gives the terminal to both outputs.
  const std::string script = "exec \"$0\" \"$@\" 2>&1";
  std::vector<std::string> words{"-c", script, test::command()};
  const auto arguments = recording20Frames();
  words.insert(words.end(), arguments.begin(), arguments.end());
  test::Process record("/bin/sh", words, playing("10"), test::Process::Output::Terminal);

  record.waitForOutput("%  ");

  EXPECT_EQ(record.wait().exitCode, 0);
}

TEST_F(Record, OverARecordingFailsAndLeavesItAsItWas) {
  const std::string before = test::contentsOf(recording / scenes);
  const test::Outcome outcome =
      test::run({"record", "--camera", "1", "--output", recording, "--frames", "1"}, playing());

  EXPECT_EQ(outcome.exitCode, 1);
  EXPECT_TRUE(test::isOneLine(outcome.errors));
  EXPECT_THAT(outcome.errors, HasSubstr(recording.string() + ": holds a recording already"));
  EXPECT_EQ(test::contentsOf(recording / scenes), before);
}

TEST_F(Record, OfSeveralCamerasIntoTheFolderOfARecordingFails) {
  const test::Outcome outcome =
      test::run({"record", "--camera", "1", "2", "--output", recording, "--frames", "1"}, playing());

  EXPECT_EQ(outcome.exitCode, 1);
  EXPECT_EQ(outcome.errors, "tarnvod: " + recording.string() + ": holds a recording already; name another folder\n");
  EXPECT_FALSE(std::filesystem::exists(recording / "camera-1"));
}

TEST_F(Record, IntoTheFolderOfSeveralCamerasFails) {
  test::makeRecording(folder / "session" / "camera-1");
  for (const std::vector<std::string>& keeping : {std::vector<std::string>{}, {"--keep", "1h"}}) {
    std::vector<std::string> arguments{"record", "--camera", "1", "--output", folder / "session", "--frames", "1"};
    arguments.insert(arguments.end(), keeping.begin(), keeping.end());

    const test::Outcome outcome = test::run(arguments, playing());

    EXPECT_EQ(outcome.exitCode, 1);
    EXPECT_EQ(outcome.errors, "tarnvod: " + (folder / "session").string() +
                                  ": holds the recordings of several cameras already; name another folder\n");
  }
}

TEST_F(Record, ThatCannotWriteItsStartLeavesTheFolderFree) {
  const test::Outcome outcome = test::runWithFilesUpTo(0, recording20Frames(), playing("max"));

  EXPECT_EQ(outcome.exitCode, 1);
  EXPECT_TRUE(test::isOneLine(outcome.errors));
  EXPECT_EQ(test::run(recording20Frames(), playing("max")).exitCode, 0);
}

TEST_F(Record, IntoAFolderThatCannotBeMadeFails) {
  test::writeTo(folder / "file", "");
  const test::Outcome outcome =
      test::run({"record", "--camera", "1", "--output", folder / "file" / "out", "--frames", "1"}, playing());

  EXPECT_EQ(outcome.exitCode, 1);
  EXPECT_TRUE(test::isOneLine(outcome.errors));
  EXPECT_THAT(outcome.errors, HasSubstr((folder / "file").string()));
}

TEST_F(Record, OfACameraThatIsNotThereFailsAndMakesNoFolder) {
  const test::Outcome outcome = test::run({"record", "--camera", "3", "--output", folder / "out"}, playing());

  EXPECT_EQ(outcome.exitCode, 1);
  EXPECT_THAT(outcome.errors, HasSubstr("camera 3"));
  EXPECT_FALSE(std::filesystem::exists(folder / "out"));
}

TEST_F(Record, OfAServiceThatIsDownFailsAndMakesNoFolder) {
  const test::Outcome outcome = test::run({"record", "--camera", "1", "--output", folder / "out"}, test::serviceDown());

  EXPECT_EQ(outcome.exitCode, 1);
  EXPECT_THAT(outcome.errors, HasSubstr("tarnvod: camera 1: the service "));
  EXPECT_FALSE(std::filesystem::exists(folder / "out"));
}

}  // namespace
