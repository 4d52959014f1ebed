// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "fleet/spool.h"

#include "base/errors.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <support/temporary_folder.h>

#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

using namespace tarn::command;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

namespace fs = std::filesystem;

constexpr std::uint64_t roomy = 64U << 20U;
constexpr std::uint64_t small = 64U << 10U;
constexpr const char* start = "0123456789abcdef";

SpoolEntry frame(std::uint64_t number, std::size_t size = 100) {
  return {SpoolEntry::Kind::Frame, {1, start, number, number}, std::string(size, 'x')};
}

/** The numbers of all frames that can still be given out. */
std::vector<std::uint64_t> numbersLeft(Spool& spool) {
  std::vector<std::uint64_t> numbers;
  while (const auto given = spool.next()) {
    if (given->entry.kind == SpoolEntry::Kind::Frame) {
      numbers.push_back(given->entry.frames.first);
    }
  }
  return numbers;
}

class ASpool : public testing::Test {
 protected:
  fs::path path() const { return folder_.path() / "spool"; }

  /** The spool as a process finds it that starts after a SIGKILL: nobody had time to tidy up. */
  fs::path copyAfterDeath() const {
    fs::copy(path(), folder_.path() / "copy", fs::copy_options::recursive);
    return folder_.path() / "copy";
  }

 private:
  const tarn::test::TemporaryFolder folder_;
};

TEST_F(ASpool, GivesEntriesInTheirOrderOnce) {
  Spool spool(path(), roomy);
  spool.append(frame(1));
  spool.append(frame(2));

  EXPECT_THAT(numbersLeft(spool), ElementsAre(1, 2));
  EXPECT_FALSE(spool.next());

  spool.append(frame(3));
  EXPECT_THAT(numbersLeft(spool), ElementsAre(3));
}

TEST_F(ASpool, KeepsThePayload) {
  Spool spool(path(), roomy);
  spool.append({SpoolEntry::Kind::Frame, {2, start, 5, 5}, "{\"a\":\"b\nc\"}"});

  const auto given = spool.next();
  ASSERT_TRUE(given);
  EXPECT_EQ(given->entry.payload, "{\"a\":\"b\nc\"}");
  EXPECT_EQ(given->entry.frames, (FrameRange{2, start, 5, 5}));
}

TEST_F(ASpool, GivesAfterRewindingWhatIsNotSettled) {
  Spool spool(path(), roomy);
  for (std::uint64_t number = 1; number <= 3; ++number) {
    spool.append(frame(number));
  }
  const auto first = spool.next();
  static_cast<void>(spool.next());
  spool.settle(first->position);

  spool.rewind();

  EXPECT_EQ(spool.figures().waiting, 2U);
  EXPECT_THAT(numbersLeft(spool), ElementsAre(2, 3));
}

TEST_F(ASpool, SurvivesADeathWithAllThatIsNotSettled) {
  Spool spool(path(), roomy);
  spool.append(frame(1));
  spool.append(frame(2));

  Spool survivor(copyAfterDeath(), roomy);

  EXPECT_EQ(survivor.figures().waiting, 2U);
  EXPECT_THAT(numbersLeft(survivor), ElementsAre(1, 2));
}

TEST_F(ASpool, ForgetsWhatWasSettledBeforeAnOrderlyEnd) {
  {
    Spool spool(path(), roomy);
    spool.append(frame(1));
    spool.append(frame(2));
    spool.settle(spool.next()->position);
  }

  Spool spool(path(), roomy);
  spool.append(frame(3));

  EXPECT_EQ(spool.figures().waiting, 2U);
  EXPECT_THAT(numbersLeft(spool), ElementsAre(2, 3));
}

TEST_F(ASpool, TakesNewEntriesAfterAnEndWithNothingLeft) {
  {
    Spool spool(path(), roomy);
    spool.append(frame(1));
    spool.settle(spool.next()->position);
  }

  Spool spool(path(), roomy);
  EXPECT_THAT(numbersLeft(spool), IsEmpty());
  spool.append(frame(2));

  EXPECT_THAT(numbersLeft(spool), ElementsAre(2));
}

TEST_F(ASpool, ReadsWhatIsIntactOfATruncatedSegment) {
  Spool spool(path(), roomy);
  for (std::uint64_t number = 1; number <= 3; ++number) {
    spool.append(frame(number));
  }
  const fs::path copy = copyAfterDeath();
  const fs::path scenes = copy / "segment-000001" / "scenes.pb";
  fs::resize_file(scenes, fs::file_size(scenes) - 1);

  Spool survivor(copy, roomy);

  EXPECT_THAT(numbersLeft(survivor), ElementsAre(1, 2));
  EXPECT_EQ(survivor.figures().damaged, 1U);
  EXPECT_EQ(survivor.figures().waiting, 2U);
}

TEST_F(ASpool, IsUsedByOneProcessAtATime) {
  const Spool spool(path(), roomy);

  EXPECT_THROW(Spool(path(), roomy), Failure);
}

class AFullSpool : public ASpool {
 protected:
  static constexpr std::uint64_t frames = 300;

  AFullSpool() {
    for (std::uint64_t number = 1; number <= frames; ++number) {
      spool.append(frame(number, 1000));
    }
  }

  Spool spool{path(), small};
};

TEST_F(AFullSpool, StaysWithinItsLimit) {
  std::uint64_t bytes = 0;
  for (const auto& file : fs::recursive_directory_iterator(path())) {
    bytes += file.is_regular_file() ? file.file_size() : 0;
  }
  EXPECT_LE(bytes, small);
  EXPECT_LE(spool.figures().bytes, small);
}

TEST_F(AFullSpool, AccountsForEachFrameByANoteInPlaceOfTheOldest) {
  std::vector<FrameRange> notes;
  std::uint64_t kept = 0;
  std::uint64_t lowest = frames;
  while (const auto given = spool.next()) {
    if (given->entry.kind == SpoolEntry::Kind::Dropped) {
      notes.push_back(given->entry.frames);
    } else {
      ++kept;
      lowest = std::min(lowest, given->entry.frames.first);
    }
  }
  std::uint64_t noted = 0;
  for (const FrameRange& note : notes) {
    noted += note.count();
    EXPECT_LT(note.last, lowest);
  }
  EXPECT_GT(kept, 0U);
  EXPECT_EQ(kept + noted, frames);
  EXPECT_EQ(spool.figures().dropped, noted);
}

/** The notes that can still be given out. */
std::vector<FrameRange> notesLeft(Spool& spool) {
  std::vector<FrameRange> notes;
  while (const auto given = spool.next()) {
    if (given->entry.kind == SpoolEntry::Kind::Dropped) {
      notes.push_back(given->entry.frames);
    }
  }
  return notes;
}

TEST_F(AFullSpool, KeepsOneNoteHoweverManyFramesItDrops) {
  for (std::uint64_t number = frames + 1; number <= 10 * frames; ++number) {
    spool.append(frame(number, 1000));
  }

  EXPECT_THAT(notesLeft(spool), ElementsAre(FrameRange{1, start, 1, spool.figures().dropped}));
  EXPECT_GT(spool.figures().dropped, 9 * frames);
}

TEST_F(AFullSpool, KeepsItsNotesThroughADeath) {
  const std::uint64_t dropped = spool.figures().dropped;

  Spool survivor(copyAfterDeath(), small);

  EXPECT_EQ(survivor.figures().waiting, spool.figures().waiting);
  EXPECT_THAT(notesLeft(survivor), ElementsAre(FrameRange{1, start, 1, dropped}));
}

TEST_F(AFullSpool, ForgetsANoteThatIsSettled) {
  const std::uint64_t waiting = spool.figures().waiting;
  const auto note = spool.next();
  ASSERT_EQ(note->entry.kind, SpoolEntry::Kind::Dropped);

  spool.settle(note->position);
  spool.rewind();

  EXPECT_EQ(spool.figures().waiting, waiting - 1);
  EXPECT_THAT(notesLeft(spool), IsEmpty());
}

TEST_F(AFullSpool, GivesANoteOutAgainWithWhatFollowsIt) {
  const std::uint64_t before = spool.figures().dropped;
  EXPECT_THAT(notesLeft(spool), ElementsAre(FrameRange{1, start, 1, before}));
  for (std::uint64_t number = frames + 1; number <= 2 * frames; ++number) {
    spool.append(frame(number, 1000));
  }
  const std::uint64_t after = spool.figures().dropped;
  EXPECT_THAT(notesLeft(spool), ElementsAre(FrameRange{1, start, before + 1, after}));

  spool.rewind();

  EXPECT_THAT(notesLeft(spool), ElementsAre(FrameRange{1, start, 1, after}));
}

TEST_F(AFullSpool, GivesNotesOutThatCannotBeWritten) {
  fs::remove(path() / "dropped");
  fs::create_directory(path() / "dropped");

  for (std::uint64_t number = frames + 1; number <= 2 * frames; ++number) {
    spool.append(frame(number, 1000));
  }

  EXPECT_THAT(notesLeft(spool), ElementsAre(FrameRange{1, start, 1, spool.figures().dropped}));
}

TEST_F(AFullSpool, IgnoresThatADroppedEntryIsSettled) {
  Spool other(path().parent_path() / "other", small);
  other.append(frame(1, 1000));
  const auto given = other.next();
  for (std::uint64_t number = 2; number <= frames; ++number) {
    other.append(frame(number, 1000));
  }
  const std::uint64_t waiting = other.figures().waiting;

  other.settle(given->position);

  EXPECT_EQ(other.figures().waiting, waiting);
}

TEST_F(AFullSpool, IsEmptyOnceAllIsSettled) {
  std::vector<SpoolPosition> positions;
  while (const auto given = spool.next()) {
    positions.push_back(given->position);
  }
  for (const SpoolPosition& position : positions) {
    spool.settle(position);
  }

  EXPECT_EQ(spool.figures().waiting, 0U);
}

TEST(ASpoolEntry, IsReadBackAsItWasWritten) {
  const SpoolEntry note{SpoolEntry::Kind::Dropped, {3, start, 7, 9}, ""};

  const auto read = decodedSpoolEntry(encoded(note));

  ASSERT_TRUE(read);
  EXPECT_EQ(read->kind, SpoolEntry::Kind::Dropped);
  EXPECT_EQ(read->frames, note.frames);
}

TEST(ASpoolEntry, IsNoneOfOtherBytes) {
  for (const char* bytes : {"", "\n", "f 1 a 1 1", "x 1 a 1 1\n", "f one a 1 1\n", "f 1 a 2 1\n"}) {
    EXPECT_FALSE(decodedSpoolEntry(bytes)) << bytes;
  }
}

}  // namespace
