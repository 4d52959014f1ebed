// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "recording/scene_index.h"

#include "recording/recording_writer.h"
#include "support/temporary_folder.h"

#include <gmock/gmock.h>
#include <sys/stat.h>

#include <filesystem>
#include <fstream>

namespace vod::recording {
namespace {

using tarn::test::TemporaryFolder;

class AnIndex : public testing::Test {
 protected:
  void record(int scenes) const {
    RecordingWriter writer(temporary_.path(), "detector");
    for (int number = 0; number < scenes; ++number) {
      writer.append(std::string(static_cast<std::size_t>(number % 200), 'x'), {1000 + number, 2000 + number});
    }
  }

  const TemporaryFolder temporary_;
  const std::filesystem::path file_ = temporary_.path() / indexFileName;
};

TEST_F(AnIndex, SaysWhereEachSceneIsAndWhenItArrived) {
  record(300);
  SceneIndex index(temporary_.path());
  ASSERT_EQ(index.size(), 300U);
  EXPECT_EQ(index.boot(), currentBoot());
  EXPECT_FALSE(index.damage());
  std::uint64_t offset = 0;
  for (std::uint64_t number = 0; number < 300; ++number) {
    const auto entry = index.at(number);
    ASSERT_TRUE(entry);
    EXPECT_EQ(entry->offset, offset);
    EXPECT_EQ(entry->length, number % 200);
    EXPECT_EQ(entry->arrival,
              (Arrival{static_cast<std::int64_t>(1000 + number), static_cast<std::int64_t>(2000 + number)}));
    EXPECT_TRUE(matches(*entry, std::string(number % 200, 'x')));
    offset += entry->length + (entry->length < 128 ? 1U : 2U);
  }
  EXPECT_FALSE(index.at(300));
}

TEST_F(AnIndex, CanBeReadInAnyOrder) {
  record(500);
  SceneIndex index(temporary_.path());
  for (const std::uint64_t number : {499U, 0U, 127U, 128U, 3U, 400U}) {
    EXPECT_EQ(index.at(number)->arrival.wallClock, static_cast<std::int64_t>(1000 + number));
  }
}

TEST_F(AnIndex, FindsTheSceneAtAnOffsetOrBehindIt) {
  record(4);  // at 0, 1, 3 and 6
  SceneIndex index(temporary_.path());
  EXPECT_EQ(index.firstFrom(0), 0U);
  EXPECT_EQ(index.firstFrom(3), 2U);
  EXPECT_EQ(index.firstFrom(4), 3U);
  EXPECT_EQ(index.firstFrom(7), 4U);
}

TEST_F(AnIndex, HasTheDocumentedBytes) {
  const IndexEntry entry = indexEntryFor(0x0102030405060708U, {-2, 9}, "scene");
  const std::string expected(
      "\x08\x07\x06\x05\x04\x03\x02\x01\xfe\xff\xff\xff\xff\xff\xff\xff\x09\0\0\0\0\0\0\0\x05\0\0\0", 28);
  EXPECT_EQ(encoded(entry).substr(0, 28), expected);
  EXPECT_EQ(encoded(entry).size(), indexEntrySize);
  EXPECT_EQ(indexHeader({}).substr(0, 28), "TVODIDX1" + std::string(20, '\0'));
}

TEST_F(AnIndex, DoesNotMatchAnotherSceneOrTime) {
  const IndexEntry entry = indexEntryFor(7, {1, 2}, "scene");
  IndexEntry moved = entry;
  moved.arrival.wallClock = 3;
  EXPECT_TRUE(matches(entry, "scene"));
  EXPECT_FALSE(matches(entry, "scenf"));
  EXPECT_FALSE(matches(moved, "scene"));
}

TEST_F(AnIndex, IsEmptyWhereItIsAbsent) {
  SceneIndex index(temporary_.path());
  EXPECT_FALSE(index.exists());
  EXPECT_EQ(index.size(), 0U);
  EXPECT_FALSE(index.damage());
}

TEST_F(AnIndex, WithoutAWholeHeaderIsDamaged) {
  std::ofstream(file_) << "TVODIDX1";
  SceneIndex index(temporary_.path());
  EXPECT_EQ(toString(*index.damage()), file_.string() + ": offset 0: the header is cut off after 8 bytes");
  EXPECT_EQ(index.size(), 0U);
}

TEST_F(AnIndex, ThatIsAPipeIsDamagedAndNotWaitedFor) {
  ASSERT_EQ(::mkfifo(file_.c_str(), 0600), 0);
  EXPECT_EQ(toString(*SceneIndex(temporary_.path()).damage()), file_.string() + ": offset 0: not a regular file");
}

TEST_F(AnIndex, WithAnEntryThatIsCutOffKeepsTheOthers) {
  record(3);
  std::filesystem::resize_file(file_, 4 * indexEntrySize - 5);
  SceneIndex index(temporary_.path());
  EXPECT_EQ(index.size(), 2U);
  EXPECT_EQ(toString(*index.damage()), file_.string() + ": offset 96: an entry is cut off after 27 bytes");
}

}  // namespace
}  // namespace vod::recording
