// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "recording/segmented_writer.h"

#include "recording/checked_reader.h"
#include "recording/segments.h"
#include "support/temporary_folder.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <filesystem>

namespace vod::recording {
namespace {

using tarn::test::TemporaryFolder;

std::uint64_t bytesIn(const std::filesystem::path& folder) {
  std::uint64_t bytes = 0;
  for (const auto& entry : std::filesystem::recursive_directory_iterator(folder)) {
    bytes += entry.is_regular_file() ? entry.file_size() : 0;
  }
  return bytes;
}

class ASegmentedRecording : public testing::Test {
 protected:
  std::vector<std::string> scenes() const {
    std::vector<std::string> scenes;
    CheckedReader reader(folder_);
    for (auto next = reader.next(); !std::holds_alternative<EndOfRecording>(next); next = reader.next()) {
      EXPECT_TRUE(std::holds_alternative<CheckedScene>(next)) << toString(std::get<Damage>(next));
      scenes.push_back(std::get<CheckedScene>(next).bytes);
    }
    return scenes;
  }

  static Arrival second(std::int64_t number) { return {number * 1'000'000, number * 1'000'000}; }

  std::size_t segmentCount() const { return partsOf(folder_).size(); }

  const TemporaryFolder temporary_;
  const std::filesystem::path folder_ = temporary_.path() / "recording";
};

TEST_F(ASegmentedRecording, NeverHoldsMoreThanItsLimitAndOneSegment) {
  const SegmentLimits limits{10'000, SegmentLimits::unlimited};
  SegmentedWriter writer(folder_, "detector", limits);
  for (int number = 0; number < 500; ++number) {
    writer.append(std::string(static_cast<std::size_t>(number % 200), 'x'), second(number));
    ASSERT_LE(bytesIn(folder_), 10'000 + limits.segmentBytes()) << number;
  }
  EXPECT_GT(bytesIn(folder_), 8'000U);
  EXPECT_EQ(scenes().back(), std::string(99, 'x'));
}

TEST_F(ASegmentedRecording, LosesItsOldestScenesFirst) {
  SegmentedWriter writer(folder_, "", {4'000, SegmentLimits::unlimited});
  std::vector<std::string> all;
  for (int number = 0; number < 300; ++number) {
    all.push_back(std::to_string(number));
    writer.append(all.back(), second(number));
  }
  const auto left = scenes();
  ASSERT_GT(left.size(), 50U);
  EXPECT_TRUE(std::equal(left.rbegin(), left.rend(), all.rbegin()));
}

TEST_F(ASegmentedRecording, KeepsATimeOfTheMonotonicClock) {
  SegmentedWriter writer(folder_, "", {SegmentLimits::unlimited, 160'000'000});
  for (int number = 0; number < 1000; ++number) {
    // The wall clock jumps back and forth meanwhile.
    writer.append(std::to_string(number), {number % 2 == 0 ? 0 : 1'700'000'000'000'000, number * 1'000'000});
  }
  const auto left = scenes();
  EXPECT_GE(left.size(), 160U);
  EXPECT_LE(left.size(), 180U);
  EXPECT_EQ(left.back(), "999");
}

TEST_F(ASegmentedRecording, GoesOnBehindTheSegmentsThatAreThere) {
  const SegmentLimits limits{100'000, SegmentLimits::unlimited};
  { SegmentedWriter(folder_, "", limits).append("one", second(1)); }
  { SegmentedWriter(folder_, "", limits).append("two", second(2)); }
  EXPECT_THAT(scenes(), testing::ElementsAre("one", "two"));
  EXPECT_EQ(segmentCount(), 2U);
}

TEST_F(ASegmentedRecording, CountsTheSegmentsThatAreThere) {
  const SegmentLimits limits{4'000, SegmentLimits::unlimited};
  for (int number = 0; number < 200; ++number) {
    SegmentedWriter(folder_, "", limits).append(std::string(50, 'x'), second(number));
    ASSERT_LE(bytesIn(folder_), 4'000 + limits.segmentBytes());
  }
}

TEST_F(ASegmentedRecording, OfAnEarlierBootIsNotTakenForOld) {
  BootId boot{};
  boot.fill('b');
  {
    RecordingWriter writer(folder_ / segmentName(1), "", boot);
    writer.append("old", second(1'000'000));
  }
  SegmentedWriter writer(folder_, "", {SegmentLimits::unlimited, 160'000'000});
  for (int number = 0; number < 100; ++number) {
    writer.append("new", second(number));
  }
  EXPECT_EQ(scenes().front(), "old");
}

TEST_F(ASegmentedRecording, ThatWasKilledAtAnyByteKeepsWhatIsReadableWhenItGoesOn) {
  const SegmentLimits limits{100'000, SegmentLimits::unlimited};
  const auto first = folder_ / segmentName(1);
  for (std::uintmax_t size = 0; size <= 8; ++size) {
    std::filesystem::remove_all(folder_);
    {
      SegmentedWriter writer(folder_, "", limits);
      writer.append("one", second(1));
      writer.append("two", second(2));
    }
    std::filesystem::resize_file(first / scenesFileName, size);
    { SegmentedWriter(folder_, "", limits).append("three", second(3)); }
    std::vector<std::string> found;
    CheckedReader reader(folder_);
    int damages = 0;
    for (auto next = reader.next(); !std::holds_alternative<EndOfRecording>(next); next = reader.next()) {
      if (const auto* scene = std::get_if<CheckedScene>(&next)) {
        found.push_back(scene->bytes);
      } else {
        ++damages;
      }
    }
    EXPECT_EQ(found.size(), size / 4 + 1) << size;
    EXPECT_EQ(found.back(), "three") << size;
    EXPECT_EQ(damages, size == 8 ? 0 : 1) << size;
  }
}

TEST_F(ASegmentedRecording, HasNothingLeftOfASegmentThatWasNeverComplete) {
  std::filesystem::create_directories(folder_ / ".segment-in-work");
  SegmentedWriter writer(folder_, "", {});
  EXPECT_TRUE(std::filesystem::is_empty(folder_));
  writer.append("one", second(1));
  EXPECT_THAT(scenes(), testing::ElementsAre("one"));
}

TEST_F(ASegmentedRecording, BeginsASegmentWhenAsked) {
  SegmentedWriter writer(folder_, "", {});
  writer.append("one", second(1));
  writer.append("two", second(2));
  writer.endSegment();
  writer.append("three", second(3));
  EXPECT_EQ(segmentCount(), 2U);
}

TEST_F(ASegmentedRecording, DoesNotMixWithAPlainOne) {
  { RecordingWriter(folder_, "").append("one"); }
  EXPECT_THAT([&] { SegmentedWriter(folder_, "", {}); },
              testing::ThrowsMessage<RecordingError>(folder_.string() + ": holds a recording without segments"));
}

}  // namespace
}  // namespace vod::recording
