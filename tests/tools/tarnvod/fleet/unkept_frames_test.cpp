// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "fleet/unkept_frames.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace tarn::command;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

FrameRange range(std::uint64_t first, std::uint64_t last) {
  return {1, "", first, last};
}

TEST(UnkeptFramesOfACamera, AreGivenOutOnce) {
  UnkeptFrames frames(1);
  frames.noteKept(1);
  frames.add(2);
  frames.add(3);

  EXPECT_THAT(frames.take(), ElementsAre(range(2, 3)));
  EXPECT_THAT(frames.take(), IsEmpty());
}

TEST(UnkeptFramesOfACamera, WaitForThoseBeforeThem) {
  UnkeptFrames frames(1);
  frames.noteKept(1);
  frames.add(4);  // 2 and 3 wait in the queue

  EXPECT_THAT(frames.take(), IsEmpty());
  frames.noteKept(2);
  EXPECT_THAT(frames.take(), IsEmpty());
  frames.noteKept(3);
  EXPECT_THAT(frames.take(), ElementsAre(range(4, 4)));
}

TEST(UnkeptFramesOfACamera, FollowEachOtherWhateverTheirOrder) {
  UnkeptFrames frames(1);
  frames.add(3);
  frames.add(1);
  frames.add(2);

  EXPECT_THAT(frames.take(), ElementsAre(range(1, 2), range(3, 3)));
}

TEST(UnkeptFramesOfACamera, MayBeTheFirst) {
  UnkeptFrames frames(1);
  frames.add(1);

  EXPECT_THAT(frames.take(), ElementsAre(range(1, 1)));
}

}  // namespace
