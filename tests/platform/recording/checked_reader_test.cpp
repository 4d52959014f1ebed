// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "recording/checked_reader.h"

#include "recording/recording_writer.h"
#include "recording/segments.h"
#include "support/temporary_folder.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>

namespace vod::recording {
namespace {

using tarn::test::TemporaryFolder;
using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::SizeIs;

std::string contentsOf(const std::filesystem::path& file) {
  std::ifstream stream(file, std::ios::binary);
  return {std::istreambuf_iterator<char>(stream), {}};
}

/** All that a recording gives. */
struct Reading {
  explicit Reading(const std::filesystem::path& folder) {
    CheckedReader reader(folder);
    for (auto next = reader.next(); !std::holds_alternative<EndOfRecording>(next); next = reader.next()) {
      if (const auto* damage = std::get_if<Damage>(&next)) {
        damages.push_back(toString(*damage));
      } else {
        const auto& scene = std::get<CheckedScene>(next);
        scenes.push_back(scene.bytes);
        arrivals += scene.arrival ? 1 : 0;
      }
    }
  }

  std::vector<std::string> scenes;
  std::vector<std::string> damages;
  int arrivals = 0;
};

const std::vector<std::string>& sampleScenes() {
  static const std::vector<std::string> scenes{"one", std::string(130, 'b'), "", "four", "five!"};
  return scenes;
}

class ARecordingWithAnIndex : public testing::Test {
 protected:
  ARecordingWithAnIndex() { make(folder_); }

  static void make(const std::filesystem::path& folder) {
    RecordingWriter writer(folder, "detector");
    std::int64_t time = 0;
    for (const std::string& scene : sampleScenes()) {
      ++time;
      writer.append(scene, {time, time});
    }
  }

  static void damage(const std::filesystem::path& file, std::size_t position, const std::string& sound) {
    std::string bytes = sound;
    bytes[position] = static_cast<char>(bytes[position] ^ 0x04);
    std::ofstream(file, std::ios::binary) << bytes;
  }

  const TemporaryFolder temporary_;
  const std::filesystem::path folder_ = temporary_.path() / "recording";
  const std::filesystem::path scenes_ = folder_ / scenesFileName;
  const std::filesystem::path index_ = folder_ / indexFileName;
};

TEST_F(ARecordingWithAnIndex, GivesItsScenesWithTheirArrivals) {
  const Reading reading(folder_);
  EXPECT_EQ(reading.scenes, sampleScenes());
  EXPECT_EQ(reading.arrivals, 5);
  EXPECT_THAT(reading.damages, IsEmpty());
}

TEST_F(ARecordingWithAnIndex, MayLoseItsIndex) {
  std::filesystem::remove(index_);
  const Reading reading(folder_);
  EXPECT_EQ(reading.scenes, sampleScenes());
  EXPECT_EQ(reading.arrivals, 0);
  EXPECT_THAT(reading.damages, IsEmpty());
}

TEST_F(ARecordingWithAnIndex, WhoseWriterWasKilledBeforeAnEntryIsSound) {
  std::filesystem::resize_file(index_, std::filesystem::file_size(index_) - indexEntrySize);
  const Reading reading(folder_);
  EXPECT_EQ(reading.scenes, sampleScenes());
  EXPECT_EQ(reading.arrivals, 4);
  EXPECT_THAT(reading.damages, IsEmpty());
}

TEST_F(ARecordingWithAnIndex, TruncatedAtAnyByteOfItsScenesGivesWhatIsBeforeAndSaysWhatIsLost) {
  const std::string sound = contentsOf(scenes_);
  std::size_t whole = 0;
  std::size_t end = 1 + sampleScenes()[0].size();
  for (std::size_t size = 0; size < sound.size(); ++size) {
    if (size == end) {
      ++whole;
      end += (sampleScenes()[whole].size() < 128 ? 1 : 2) + sampleScenes()[whole].size();
    }
    std::ofstream(scenes_, std::ios::binary) << sound.substr(0, size);
    const Reading reading(folder_);
    EXPECT_THAT(reading.scenes, ElementsAreArray(sampleScenes().data(), whole)) << size;
    EXPECT_THAT(reading.damages, SizeIs(1)) << size;
  }
}

TEST_F(ARecordingWithAnIndex, TruncatedAtAnyByteOfItsIndexGivesAllScenes) {
  const std::string sound = contentsOf(index_);
  for (std::size_t size = 0; size < sound.size(); ++size) {
    std::ofstream(index_, std::ios::binary) << sound.substr(0, size);
    const Reading reading(folder_);
    EXPECT_EQ(reading.scenes, sampleScenes()) << size;
    if (size != sound.size() - indexEntrySize) {
      EXPECT_THAT(reading.damages, Not(IsEmpty())) << size;
    }
  }
}

TEST_F(ARecordingWithAnIndex, DamagedInAnyByteOfItsScenesLosesNoneOfTheOthers) {
  const std::string sound = contentsOf(scenes_);
  for (std::size_t position = 0; position < sound.size(); ++position) {
    damage(scenes_, position, sound);
    const Reading reading(folder_);
    EXPECT_THAT(reading.damages, Not(IsEmpty())) << position;
    const auto intact = std::count_if(sampleScenes().begin(), sampleScenes().end(), [&](const std::string& scene) {
      return std::count(reading.scenes.begin(), reading.scenes.end(), scene) == 1;
    });
    EXPECT_GE(intact, 4) << position;
    EXPECT_THAT(reading.scenes, SizeIs(5)) << position;
  }
}

TEST_F(ARecordingWithAnIndex, DamagedInAnyByteOfItsIndexGivesAllScenesAndSaysSo) {
  const std::string sound = contentsOf(index_);
  for (std::size_t position = 0; position < sound.size(); ++position) {
    damage(index_, position, sound);
    const Reading reading(folder_);
    EXPECT_EQ(reading.scenes, sampleScenes()) << position;
    EXPECT_THAT(reading.damages, Not(IsEmpty())) << position;
  }
}

TEST_F(ARecordingWithAnIndex, GoesOnBehindBytesThatAreNotScenes) {
  std::string bytes = contentsOf(scenes_);
  bytes.replace(4, 20, std::string(20, '\xff'));
  std::ofstream(scenes_, std::ios::binary) << bytes;
  const Reading reading(folder_);
  EXPECT_THAT(reading.scenes, ElementsAre("one", "", "four", "five!"));
  EXPECT_THAT(reading.damages,
              ElementsAre(scenes_.string() + ": offset 4: the length of a message is not a valid varint; 1 frame lost, "
                                             "goes on at offset 136"));
}

TEST_F(ARecordingWithAnIndex, OfOtherScenesGivesTheScenesThatAreThere) {
  std::ofstream(scenes_, std::ios::binary) << "\x02xx\x03yyy\x04zzzz\x01u\x06vvvvvv";
  const Reading reading(folder_);
  EXPECT_THAT(reading.scenes, ElementsAre("xx", "yyy", "zzzz", "u", "vvvvvv"));
  EXPECT_THAT(reading.damages, Not(IsEmpty()));
}

TEST_F(ARecordingWithAnIndex, OfSeveralSegmentsIsReadFromOneToTheNext) {
  const auto whole = temporary_.path() / "segments";
  make(whole / segmentName(9));
  make(whole / segmentName(10));
  make(whole / segmentName(1000000));
  std::filesystem::resize_file(whole / segmentName(9) / scenesFileName, 6);
  std::filesystem::remove(whole / segmentName(10) / scenesFileName);

  const Reading reading(whole);

  std::vector<std::string> expected{"one"};
  expected.insert(expected.end(), sampleScenes().begin(), sampleScenes().end());
  EXPECT_EQ(reading.scenes, expected);
  EXPECT_THAT(reading.damages,
              ElementsAre(HasSubstr("segment-000009/scenes.pb: offset 4: a message of 130 bytes is cut "
                                    "off after 0; 4 frames of the index are lost from here on"),
                          HasSubstr("segment-000010/scenes.pb: offset 0: cannot be opened")));
  RecordingReader plain(whole);
  EXPECT_EQ(std::get<RecordedScene>(plain.next()).bytes, "one");
}

TEST(ASegment, HasANameThatSortsByNumber) {
  EXPECT_EQ(segmentName(1), "segment-000001");
  EXPECT_EQ(segmentNumber("segment-000042"), 42U);
  EXPECT_EQ(segmentNumber("segment-1234567"), 1234567U);
  for (const char* name : {"segment-", "segment-1", "segment-00000x", "segment-000001~", "scenes.pb", ""}) {
    EXPECT_EQ(segmentNumber(name), std::nullopt) << name;
  }
}

}  // namespace
}  // namespace vod::recording
