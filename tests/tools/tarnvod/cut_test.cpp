// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "full_disk.h"
#include "situations.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>
#include <recording/recording_writer.h>
#include <recording/segments.h>

#include <algorithm>
#include <filesystem>
#include <iterator>
#include <string>
#include <vector>

using nlohmann::json;
using testing::HasSubstr;

namespace {

constexpr const char* scenes = "scenes.pb";
constexpr const char* indexFile = "scenes.idx";
constexpr const char* information = "detector-information.pb";
constexpr const char* background = "background.jpg";
constexpr const char* street = "\xFF\xD8\xFFstreet";  // begins like a JPEG image
constexpr int blocks = 8;                             // room for the scenes, not for a large picture

class PartsOfARecording : public test::TwoCameras {
 protected:
  test::Outcome cut(const std::string& from, const std::string& to, const std::string& output) const {
    return test::run({"cut", recording, "--from", from, "--to", to, "--output", folder / output});
  }

  int framesOf(const std::string& name) const {
    return json::parse(test::run({"inspect", folder / name, "--json"}).output)["frames"];
  }

  void expectSame(const std::filesystem::path& left, const std::filesystem::path& right) const {
    for (const char* file : {scenes, indexFile, information}) {
      EXPECT_EQ(test::contentsOf(left / file), test::contentsOf(right / file)) << file;
      EXPECT_EQ(std::filesystem::exists(left / file), std::filesystem::exists(right / file)) << file;
    }
  }
};

using Cut = PartsOfARecording;
using Merge = PartsOfARecording;
using Repair = PartsOfARecording;

TEST_F(Cut, KeepsTheBackground) {
  test::writeTo(recording / background, street);

  EXPECT_EQ(cut("0.3", "0.7", "part").exitCode, 0);

  EXPECT_EQ(test::contentsOf(folder / "part" / background), street);
}

TEST_F(Cut, TakesTheFirstMomentAndLeavesTheLastOut) {
  const test::Outcome outcome = cut("0.3", "0.7", "part");

  EXPECT_EQ(outcome.exitCode, 0) << outcome.errors;
  EXPECT_THAT(outcome.output, HasSubstr("cut 4 frames, "));
  std::string expected;
  for (const int number : {3, 4, 5, 6}) {
    const std::string bytes = test::sceneBytes(number);
    expected += static_cast<char>(bytes.size()) + bytes;
  }
  EXPECT_EQ(test::contentsOf(folder / "part" / scenes), expected);
  EXPECT_EQ(test::contentsOf(folder / "part" / information), test::contentsOf(recording / information));
  EXPECT_EQ(test::run({"inspect", folder / "part"}).exitCode, 0);
}

TEST_F(Cut, KeepsWhenEachSceneArrived) {
  EXPECT_EQ(cut("0.5", "99", "part").exitCode, 0);
  vod::recording::SceneIndex before(recording);
  vod::recording::SceneIndex after(folder / "part");
  ASSERT_EQ(after.size(), 15U);
  EXPECT_EQ(after.boot(), before.boot());
  for (std::uint64_t number = 0; number < 15; ++number) {
    EXPECT_EQ(after.at(number)->arrival, before.at(number + 5)->arrival);
  }
}

TEST_F(Cut, AndMergeAreEachOthersInverseAtEveryFrame) {
  for (const bool hasIndex : {true, false}) {
    if (!hasIndex) {
      std::filesystem::remove(recording / indexFile);
    }
    for (const std::string at : {"0.1", "0.95", "1.9", "5"}) {
      const std::string suffix = at + (hasIndex ? "" : "-plain");
      ASSERT_EQ(cut("0", at, "head" + suffix).exitCode, 0);
      ASSERT_EQ(cut(at, "100", "tail" + suffix).exitCode, 0);
      ASSERT_EQ(test::run({"merge", folder / ("head" + suffix), folder / ("tail" + suffix), "--output",
                           folder / ("whole" + suffix)})
                    .exitCode,
                0);
      expectSame(folder / ("whole" + suffix), recording);
    }
  }
}

TEST_F(Cut, OfWhatWasMergedGivesThePartsBack) {
  ASSERT_EQ(cut("0", "0.8", "head").exitCode, 0);
  ASSERT_EQ(cut("0.8", "9", "tail").exitCode, 0);
  ASSERT_EQ(test::run({"merge", folder / "head", folder / "tail", "--output", folder / "whole"}).exitCode, 0);
  for (const auto& [from, to, name] : {std::tuple("0", "0.8", "head"), std::tuple("0.8", "9", "tail")}) {
    const auto again = folder / (std::string(name) + "-again");
    ASSERT_EQ(test::run({"cut", folder / "whole", "--from", from, "--to", to, "--output", again}).exitCode, 0);
    expectSame(again, folder / name);
  }
}

TEST_F(Cut, RefusesTimesThatLeaveNothing) {
  const test::Outcome outcome = cut("2", "1", "part");
  EXPECT_EQ(outcome.exitCode, 2);
  EXPECT_THAT(outcome.errors, HasSubstr("--from must be less than --to"));
  EXPECT_EQ(cut("-1", "1", "part").exitCode, 2);
}

TEST_F(Cut, LeavesAFolderThatHoldsSomethingAlone) {
  const std::string before = test::contentsOf(recording / scenes);
  const test::Outcome outcome = test::run({"cut", recording, "--output", recording});
  EXPECT_EQ(outcome.exitCode, 1);
  EXPECT_EQ(outcome.errors, "tarnvod: " + recording.string() + ": not empty; name another folder\n");
  EXPECT_EQ(test::contentsOf(recording / scenes), before);
}

TEST_F(Cut, OfAMissingRecordingLeavesNothingBehind) {
  EXPECT_EQ(test::run({"cut", folder / "missing", "--output", folder / "part"}).exitCode, 1);
  EXPECT_FALSE(std::filesystem::exists(folder / "part"));
}

TEST_F(Merge, PutsSegmentsIntoOneRecording) {
  const auto segments = folder / "segments";
  std::filesystem::create_directory(segments);
  ASSERT_EQ(test::run({"cut", recording, "--to", "1", "--output", segments / "segment-000001"}).exitCode, 0);
  ASSERT_EQ(test::run({"cut", recording, "--from", "1", "--output", segments / "segment-000002"}).exitCode, 0);
  EXPECT_EQ(test::run({"merge", segments, "--output", folder / "whole"}).exitCode, 0);
  expectSame(folder / "whole", recording);
}

TEST_F(Merge, KeepsTheBackgroundOfTheFirstRecordingThatHasOne) {
  for (const char* name : {"first", "second", "third"}) {
    test::makeRecording(folder / name);
  }
  test::writeTo(folder / "second" / background, street);
  test::writeTo(folder / "third" / background, "\xFF\xD8\xFFsquare");

  EXPECT_EQ(test::run({"merge", folder / "first", folder / "second", folder / "third", "--output", folder / "whole"})
                .exitCode,
            0);

  EXPECT_EQ(test::contentsOf(folder / "whole" / background), street);
}

TEST_F(Merge, ThatCannotCopyTheBackgroundFailsAndLeavesNothingBehind) {
  test::writeTo(recording / background, std::string(100'000, 'x'));

  const test::Outcome outcome = test::runWithFilesUpTo(blocks, {"merge", recording, "--output", folder / "whole"});

  EXPECT_EQ(outcome.exitCode, 1);
  EXPECT_TRUE(test::isOneLine(outcome.errors));
  EXPECT_THAT(outcome.errors, HasSubstr("background.jpg: File too large\n"));
  EXPECT_EQ(std::distance(std::filesystem::directory_iterator(recording.parent_path()), {}), 1);
}

TEST_F(Merge, OfSeveralBootsHasNoBoot) {
  for (const char name : {'a', 'b'}) {
    vod::recording::BootId boot{};
    boot.fill(name);
    vod::recording::RecordingWriter(folder / std::string(1, name), "", boot).append("");
  }
  EXPECT_EQ(test::run({"merge", folder / "a", folder / "b", "--output", folder / "both"}).exitCode, 0);
  EXPECT_EQ(vod::recording::SceneIndex(folder / "both").boot(), vod::recording::BootId{});
  EXPECT_EQ(vod::recording::SceneIndex(folder / "both").size(), 2U);
}

TEST_F(Merge, RefusesRecordingsOfDifferentDetectors) {
  vod::recording::RecordingWriter(folder / "other", "");
  const test::Outcome outcome = test::run({"merge", recording, folder / "other", "--output", folder / "both"});
  EXPECT_EQ(outcome.exitCode, 1);
  EXPECT_TRUE(test::isOneLine(outcome.errors));
  EXPECT_THAT(outcome.errors, HasSubstr((folder / "other").string() + ": its detector information differs"));
  EXPECT_FALSE(std::filesystem::exists(folder / "both"));
}

TEST_F(Repair, KeepsEverythingBeforeTheEndOfATruncatedRecording) {
  const std::string bytes = test::contentsOf(recording / scenes);
  const std::size_t lastScene = test::sceneBytes(test::framesInRecording - 1).size() + 1;
  test::writeTo(recording / scenes, bytes.substr(0, bytes.size() - 3));

  const test::Outcome outcome = test::run({"repair", recording, "--output", folder / "repaired"});

  EXPECT_EQ(outcome.exitCode, 0) << outcome.errors;
  EXPECT_THAT(outcome.output, HasSubstr((recording / scenes).string() + ": offset " +
                                        std::to_string(bytes.size() - lastScene) + ": a message of "));
  EXPECT_THAT(outcome.output, HasSubstr("repaired 19 frames, "));
  EXPECT_EQ(test::contentsOf(folder / "repaired" / scenes), bytes.substr(0, bytes.size() - lastScene));
  EXPECT_EQ(test::run({"inspect", folder / "repaired"}).exitCode, 0);
}

TEST_F(Repair, LosesOnlyTheSceneThatWasHit) {
  const std::string sound = test::contentsOf(recording / scenes);
  const std::size_t size = test::sceneBytes(0).size() + 1;
  std::string bytes = sound;
  bytes.replace(size, 9, std::string(9, '\xff'));
  test::writeTo(recording / scenes, bytes);

  EXPECT_EQ(test::run({"repair", recording, "--output", folder / "repaired"}).exitCode, 0);

  EXPECT_EQ(framesOf("repaired"), 19);
  EXPECT_EQ(test::contentsOf(folder / "repaired" / scenes),
            sound.substr(0, size) + sound.substr(size + test::sceneBytes(1).size() + 1));
}

TEST_F(Repair, LeavesOutWhatIsNotAScene) {
  std::filesystem::remove(recording / indexFile);
  test::writeTo(recording / scenes, "\x02\x08\x01\x03\xFF\xFF\xFF\x02\x08\x02");
  const test::Outcome outcome = test::run({"repair", recording, "--output", folder / "repaired"});
  EXPECT_EQ(outcome.exitCode, 0);
  EXPECT_THAT(outcome.output, HasSubstr("scenes.pb: offset 3: not a serialized VOD.Scene; left out\n"));
  EXPECT_EQ(test::contentsOf(folder / "repaired" / scenes), "\x02\x08\x01\x02\x08\x02");
}

TEST_F(Repair, GoesOnBehindDamageWithoutAnIndex) {
  std::filesystem::remove(recording / indexFile);
  const std::string sound = test::contentsOf(recording / scenes);
  const std::size_t size = test::sceneBytes(0).size() + 1;
  const std::size_t next = size + test::sceneBytes(1).size() + 1;
  constexpr std::size_t unknownField = 5;  // at the end of a scene; without an index nothing shows what belongs into it
  for (std::size_t position = size; position <= next - unknownField; ++position) {
    std::string bytes = sound;
    bytes.replace(position, next - position, std::string(next - position, '\xff'));
    test::writeTo(recording / scenes, bytes);
    const auto output = folder / ("repaired-" + std::to_string(position));

    const test::Outcome outcome = test::run({"repair", recording, "--output", output});

    EXPECT_EQ(outcome.exitCode, 0) << outcome.errors;
    EXPECT_THAT(outcome.output, HasSubstr("scenes.pb: offset " + std::to_string(size) + ": ")) << position;
    EXPECT_EQ(test::contentsOf(output / scenes), sound.substr(0, size) + sound.substr(next)) << position;
  }
}

TEST_F(Repair, FindsTheNextSceneBehindALengthThatIsWrong) {
  std::filesystem::remove(recording / indexFile);
  const std::string sound = test::contentsOf(recording / scenes);
  const std::size_t size = test::sceneBytes(0).size() + 1;
  const std::size_t next = size + test::sceneBytes(1).size() + 1;
  for (const int length : {1, 40, 100, 127}) {
    std::string bytes = sound;
    bytes[size] = static_cast<char>(length);
    test::writeTo(recording / scenes, bytes);
    const auto output = folder / ("repaired-" + std::to_string(length));

    const test::Outcome outcome = test::run({"repair", recording, "--output", output});

    EXPECT_THAT(outcome.output, HasSubstr("offset " + std::to_string(size) + ": this is not a scene; ")) << length;
    EXPECT_THAT(outcome.output, HasSubstr("goes on at offset " + std::to_string(next))) << length;
    EXPECT_EQ(test::contentsOf(output / scenes), sound.substr(0, size) + sound.substr(next)) << length;
  }
}

TEST_F(Repair, KeepsTheScenesWithoutDetectorInformation) {
  std::filesystem::remove(recording / information);
  const test::Outcome outcome = test::run({"repair", recording, "--output", folder / "repaired"});
  EXPECT_EQ(outcome.exitCode, 0);
  EXPECT_THAT(outcome.output,
              HasSubstr("detector-information.pb: offset 0: cannot be read; the classes have no names"));
  EXPECT_EQ(framesOf("repaired"), 20);
}

TEST_F(Repair, KeepsTheBackground) {
  test::writeTo(recording / background, street);

  EXPECT_EQ(test::run({"repair", recording, "--output", folder / "repaired"}).exitCode, 0);

  EXPECT_EQ(test::contentsOf(folder / "repaired" / background), street);
}

TEST_F(Repair, ReportsABackgroundThatCannotBeCopiedAndKeepsTheScenes) {
  test::writeTo(recording / background, std::string(100'000, 'x'));

  const test::Outcome outcome = test::runWithFilesUpTo(blocks, {"repair", recording, "--output", folder / "repaired"});

  EXPECT_EQ(outcome.exitCode, 0) << outcome.errors;
  EXPECT_THAT(outcome.output,
              HasSubstr((recording / background).string() + ": offset 0: cannot be copied; left out\n"));
  EXPECT_FALSE(std::filesystem::exists(folder / "repaired" / background));
  expectSame(folder / "repaired", recording);
}

TEST_F(Repair, OfASoundRecordingCopiesIt) {
  const test::Outcome outcome = test::run({"repair", recording, "--output", (folder / "repaired").string() + "/"});
  EXPECT_EQ(outcome.exitCode, 0);
  EXPECT_THAT(outcome.output, HasSubstr("; 0 damages\n"));
  expectSame(folder / "repaired", recording);
}

}  // namespace
