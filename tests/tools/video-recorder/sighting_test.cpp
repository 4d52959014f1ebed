// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "video-recorder/sighting.h"

#include <gtest/gtest.h>

using recorder::Box;
using recorder::Sighting;

namespace {

constexpr Box person = {0.4F, 0.2F, 0.5F, 0.6F};

}  // namespace

TEST(SightingsOfOnePerson, LeaveTheBestOfThem) {
  const auto best = recorder::withoutDuplicates({{moved(person, 0.04F, 0), 0.5F}, {person, 2}});
  ASSERT_EQ(best.size(), 1U);
  EXPECT_EQ(best[0].margin, 2);
  EXPECT_FLOAT_EQ(best[0].box.left, person.left);
}

TEST(SightingsOfOnePerson, ThatAgreeShareTheBoxByTheirMargins) {
  const auto best = recorder::withoutDuplicates({{person, 3}, {moved(person, 0.02F, 0), 1}});
  ASSERT_EQ(best.size(), 1U);
  EXPECT_FLOAT_EQ(best[0].box.left, person.left + 0.005F);
  EXPECT_FLOAT_EQ(best[0].box.right, person.right + 0.005F);
}

TEST(SightingsOfOnePerson, IncludeTheSmallOneWithinALargeOne) {
  const Box upperBody = {0.41F, 0.2F, 0.49F, 0.3F};
  EXPECT_EQ(recorder::withoutDuplicates({{person, 2}, {upperBody, 1}}).size(), 1U);
}

TEST(SightingsOfTwoPeopleSideBySide, AreBothKept) {
  EXPECT_EQ(recorder::withoutDuplicates({{person, 2}, {moved(person, 0.06F, 0), 1}}).size(), 2U);
}

TEST(SightingsInAnyOrder, GiveTheSameResult) {
  const Sighting one{person, 1};
  const Sighting other{moved(person, 0.02F, 0), 1};
  const auto result = recorder::withoutDuplicates({one, other});
  const auto swapped = recorder::withoutDuplicates({other, one});
  ASSERT_EQ(result.size(), 1U);
  ASSERT_EQ(swapped.size(), 1U);
  EXPECT_EQ(result[0].box.left, swapped[0].box.left);
}

TEST(AScore, IsFiftyWherePeopleAndBackgroundAreSeenAlike) {
  EXPECT_EQ(recorder::scoreOf(recorder::evenMargin), 50U);
}

TEST(AScore, RisesWithTheMarginAndStaysWithinAHundred) {
  EXPECT_EQ(recorder::scoreOf(-20), 0U);
  EXPECT_LT(recorder::scoreOf(0.5F), recorder::scoreOf(1.5F));
  EXPECT_EQ(recorder::scoreOf(20), 100U);
}
