// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "fleet/selection.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

using namespace tarn::command;
using namespace tarn::VOD;

namespace {

DetectionData withObject(unsigned int id, const std::string& name, float place = 0) {
  return {0, {{place, 0, 0, 0, id, name, 80, DetectionStatus::TrackedConfident, {}, {}}}, {}};
}

const DetectionData empty{0, {}, {}};

TEST(ASelection, TakesEveryFrameByDefault) {
  Selection selection(SelectionOptions{});

  EXPECT_TRUE(selection.takes(empty));
  EXPECT_TRUE(selection.takes(empty));
}

TEST(ASelectionOfEveryThirdFrame, BeginsWithTheFirst) {
  Selection selection({3, false});

  std::string taken;
  for (int frame = 0; frame < 7; ++frame) {
    taken += selection.takes(empty) ? 'x' : '-';
  }
  EXPECT_EQ(taken, "x--x--x");
}

TEST(ASelectionOfChanges, TakesFramesWithOtherObjects) {
  Selection selection({1, true});

  EXPECT_TRUE(selection.takes(empty));
  EXPECT_FALSE(selection.takes(empty));
  EXPECT_TRUE(selection.takes(withObject(7, "human")));
  EXPECT_FALSE(selection.takes(withObject(7, "human", 0.5F)));
  EXPECT_TRUE(selection.takes(withObject(7, "car")));
  EXPECT_TRUE(selection.takes(withObject(8, "car")));
  EXPECT_TRUE(selection.takes(empty));
}

TEST(ASelectionOfChanges, TakesFramesWithEvents) {
  Selection selection({1, true});
  static_cast<void>(selection.takes(empty));

  EXPECT_TRUE(selection.takes({0, {}, {{EventAction::Delete, 7, {}}}}));
  EXPECT_FALSE(selection.takes(empty));
}

}  // namespace
