// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

// Power that fails at any moment: each file may end anywhere, whatever the others hold.

#include "recording/checked_reader.h"
#include "recording/recording_writer.h"
#include "recording/segmented_writer.h"
#include "recording/segments.h"
#include "support/temporary_folder.h"

#include <gmock/gmock.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <string>
#include <vector>

namespace vod::recording {
namespace {

using testing::ElementsAreArray;
using testing::IsEmpty;

const std::string detector = "detector information";

std::string contentsOf(const std::filesystem::path& file) {
  std::ifstream stream(file, std::ios::binary);
  return {std::istreambuf_iterator<char>(stream), {}};
}

void writeTo(const std::filesystem::path& file, const std::string& bytes) {
  std::ofstream(file, std::ios::binary) << bytes;
}

/** All that a recording gives. */
struct Reading {
  explicit Reading(const std::filesystem::path& folder) {
    CheckedReader reader(folder);
    for (auto next = reader.next(); !std::holds_alternative<EndOfRecording>(next); next = reader.next()) {
      if (const auto* const scene = std::get_if<CheckedScene>(&next)) {
        scenes.push_back(scene->bytes);
      } else {
        damages.push_back(toString(std::get<Damage>(next)));
      }
    }
  }

  std::vector<std::string> scenes;
  std::vector<std::string> damages;
};

/** The whole scenes in the first bytes of a file; each of these scenes takes one byte more than its text. */
std::vector<std::string> wholeScenes(const std::vector<std::string>& scenes, std::size_t bytes) {
  std::vector<std::string> whole;
  std::size_t end = 0;
  for (const std::string& scene : scenes) {
    end += scene.size() + 1;
    if (end <= bytes) {
      whole.push_back(scene);
    }
  }
  return whole;
}

/** In the file, each with its length before it. */
std::size_t bytesOf(const std::vector<std::string>& scenes) {
  std::size_t bytes = scenes.size();
  for (const std::string& scene : scenes) {
    bytes += scene.size();
  }
  return bytes;
}

Arrival second(std::int64_t number) {
  return {number * 1'000'000, number * 1'000'000};
}

class PowerThatFails : public testing::Test {
 protected:
  const tarn::test::TemporaryFolder temporary_;
  const std::filesystem::path folder_ = temporary_.path() / "recording";
};

TEST_F(PowerThatFails, LeavesEveryWholeSceneWhereverBothFilesEnd) {
  const std::vector<std::string> scenes{"one", "second", "", "fourth scene"};
  {
    RecordingWriter writer(folder_, detector);
    for (const std::string& scene : scenes) {
      writer.append(scene, second(1));
    }
  }
  const std::string sceneBytes = contentsOf(folder_ / scenesFileName);
  const std::string indexBytes = contentsOf(folder_ / indexFileName);
  for (std::size_t size = 0; size <= sceneBytes.size(); ++size) {
    writeTo(folder_ / scenesFileName, sceneBytes.substr(0, size));
    const auto whole = wholeScenes(scenes, size);
    const bool endsWithinScene = size != bytesOf(whole);
    for (std::size_t indexSize = 0; indexSize <= indexBytes.size(); ++indexSize) {
      writeTo(folder_ / indexFileName, indexBytes.substr(0, indexSize));
      const Reading reading(folder_);
      ASSERT_THAT(reading.scenes, ElementsAreArray(whole)) << size << ", index " << indexSize;
      const bool indexListsMore = indexSize / indexEntrySize > whole.size() + 1;
      const bool indexIsCutOff = indexSize % indexEntrySize != 0 || indexSize == 0;
      if (endsWithinScene || indexListsMore || indexIsCutOff) {
        ASSERT_FALSE(reading.damages.empty()) << size << ", index " << indexSize;
      }
    }
  }
}

/** Three segments of two scenes each. */
class PowerThatFailsOverSegments : public PowerThatFails {
 protected:
  static constexpr std::size_t segments = 3;

  PowerThatFailsOverSegments() {
    SegmentedWriter writer(folder_, detector, {});
    for (std::size_t number = 0; number < scenes_.size(); ++number) {
      if (number > 0 && number % 2 == 0) {
        writer.endSegment();
      }
      writer.append(scenes_[number], second(static_cast<std::int64_t>(number)));
    }
  }

  std::filesystem::path segment(std::size_t number) const { return folder_ / segmentName(number + 1); }

  /** The scenes that are left when this file of a segment ends after so many bytes. */
  std::vector<std::string> left(std::size_t segment, const std::string& file, std::size_t size) const {
    std::vector<std::string> all;
    for (std::size_t number = 0; number < segments; ++number) {
      const std::vector<std::string> own{scenes_[2 * number], scenes_[2 * number + 1]};
      const bool isCut = number == segment && file == scenesFileName;
      for (const std::string& scene : isCut ? wholeScenes(own, size) : own) {
        all.push_back(scene);
      }
    }
    return all;
  }

  /** By path, below the recording's folder. */
  std::map<std::filesystem::path, std::string> files() const {
    std::map<std::filesystem::path, std::string> files;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(folder_)) {
      if (entry.is_regular_file()) {
        files[entry.path()] = contentsOf(entry.path());
      }
    }
    return files;
  }

  const std::vector<std::string> scenes_{"one", "second", "3", "fourth", "no. 5", "six"};
};

TEST_F(PowerThatFailsOverSegments, LeavesEveryWholeSceneWhereverOneOfTheFilesEndsAndReportsTheRest) {
  for (std::size_t number = 0; number < segments; ++number) {
    for (const char* const file : {scenesFileName, indexFileName}) {
      const auto path = segment(number) / file;
      const std::string sound = contentsOf(path);
      for (std::size_t size = 0; size < sound.size(); ++size) {
        writeTo(path, sound.substr(0, size));
        const Reading reading(folder_);
        EXPECT_THAT(reading.scenes, ElementsAreArray(left(number, file, size))) << path << ", " << size;
        // One scene without an entry is what a recorder leaves that was killed.
        if (size + indexEntrySize != sound.size() || path.filename() != indexFileName) {
          EXPECT_FALSE(reading.damages.empty()) << path << ", " << size;
        }
      }
      writeTo(path, sound);
    }
  }
}

TEST_F(PowerThatFailsOverSegments, LosesNothingToTheRecorderThatGoesOn) {
  for (const char* const file : {scenesFileName, indexFileName, detectorInformationFileName}) {
    const auto path = segment(segments - 1) / file;
    const std::string sound = contentsOf(path);
    for (std::size_t size = 0; size <= sound.size(); ++size) {
      writeTo(path, sound.substr(0, size));
      auto expectedFiles = files();
      auto expectedScenes = left(segments - 1, file, size);
      expectedScenes.emplace_back("later");

      { SegmentedWriter(folder_, detector, {}).append("later", second(100)); }

      EXPECT_THAT(Reading(folder_).scenes, ElementsAreArray(expectedScenes)) << path << ", " << size;
      std::filesystem::remove_all(segment(segments));
      EXPECT_EQ(files(), expectedFiles) << path << ", " << size;
    }
    writeTo(path, sound);
  }
}

TEST_F(PowerThatFailsOverSegments, LeavesTheOtherSegmentsWhereOneHasNoFiles) {
  for (std::size_t number = 0; number < segments; ++number) {
    const auto aside = temporary_.path() / "aside";
    std::filesystem::rename(segment(number), aside);
    std::filesystem::create_directory(segment(number));
    const Reading reading(folder_);
    EXPECT_THAT(reading.scenes, ElementsAreArray(left(number, scenesFileName, 0))) << number;
    EXPECT_FALSE(reading.damages.empty()) << number;
    std::filesystem::remove(segment(number));
    std::filesystem::rename(aside, segment(number));
  }
}

TEST_F(PowerThatFailsOverSegments, LeavesTheDetectorInformationOfAnEarlierSegment) {
  const auto path = segment(segments - 1) / detectorInformationFileName;
  writeTo(path, "");
  EXPECT_EQ(readDetectorInformation(folder_), detector);
  std::filesystem::remove(path);
  EXPECT_EQ(readDetectorInformation(folder_), detector);
}

TEST_F(PowerThatFailsOverSegments, LeavesNoDetectorInformationWhereNoSegmentHasAny) {
  for (std::size_t number = 0; number < segments; ++number) {
    writeTo(segment(number) / detectorInformationFileName, "");
  }
  EXPECT_EQ(readDetectorInformation(folder_), "");
}

TEST_F(PowerThatFailsOverSegments, WhileASegmentBeginsOrGoesLeavesTheOthers) {
  // A segment is made, and removed, under another name.
  for (const char* const file : {scenesFileName, indexFileName, detectorInformationFileName}) {
    std::filesystem::create_directory(folder_ / ".segment-in-work");
    writeTo(folder_ / ".segment-in-work" / file, "part");
    const Reading reading(folder_);
    EXPECT_THAT(reading.scenes, ElementsAreArray(scenes_));
    EXPECT_THAT(reading.damages, IsEmpty());
    { SegmentedWriter(folder_, detector, {}).append("later", second(100)); }
    EXPECT_EQ(Reading(folder_).scenes.size(), scenes_.size() + 1);
    std::filesystem::remove_all(segment(segments));
  }
}

/** Times by the wall clock, in seconds; the monotonic clock goes on by one. */
class AClockThatJumps : public PowerThatFails, public testing::WithParamInterface<std::vector<std::int64_t>> {};

TEST_P(AClockThatJumps, CostsNoSceneAndStaysInTheIndexAsItWas) {
  const auto& times = GetParam();
  // Ten seconds are kept, in sixteen segments.
  SegmentedWriter writer(folder_, detector, {SegmentLimits::unlimited, 10'000'000});
  std::vector<std::string> scenes;
  for (std::size_t number = 0; number < times.size(); ++number) {
    scenes.push_back("scene " + std::to_string(number));
    writer.append(scenes.back(), {times[number] * 1'000'000, static_cast<std::int64_t>(number) * 1'000'000});
  }
  const Reading reading(folder_);
  EXPECT_EQ(reading.scenes, scenes);
  EXPECT_THAT(reading.damages, IsEmpty());
  CheckedReader reader(folder_);
  for (const std::int64_t time : times) {
    EXPECT_EQ(std::get<CheckedScene>(reader.next()).arrival->wallClock, time * 1'000'000);
  }
}

INSTANTIATE_TEST_SUITE_P(ForwardsAndBackwards, AClockThatJumps,
                         testing::Values(std::vector<std::int64_t>{100, 101, 90'000'000, 90'000'001},
                                         std::vector<std::int64_t>{90'000'000, 90'000'001, 100, 101},
                                         std::vector<std::int64_t>{100, -5, 100, 1'000'000'000'000, -7}));

}  // namespace
}  // namespace vod::recording
