// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "video-recorder/tracker.h"

#include <gmock/gmock.h>

using recorder::Box;
using recorder::Sighting;
using recorder::TrackedFrame;
using recorder::Tracker;
using recorder::TrackerSettings;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

namespace {

constexpr float strong = 3;
constexpr float weak = 0.5F;
const TrackerSettings settings;

Box personAt(float x, float y = 0.5F) {
  return {x - 0.03F, y - 0.1F, x + 0.03F, y + 0.1F};
}

class APerson : public testing::Test {
 protected:
  TrackedFrame see(float x, float margin = strong) { return tracker.update({{personAt(x), margin}}); }
  TrackedFrame seeNobody() { return tracker.update({}); }

  // The person stands still.
  TrackedFrame seeOften(float x, int frames) {
    TrackedFrame frame;
    for (int i = 0; i < frames; ++i) {
      frame = see(x);
    }
    return frame;
  }

  TrackedFrame seeNobodyFor(int frames) {
    TrackedFrame frame;
    for (int i = 0; i < frames; ++i) {
      frame = seeNobody();
    }
    return frame;
  }

  Tracker tracker;
};

using AConfirmedPerson = APerson;
using ALostPerson = APerson;

}  // namespace

TEST_F(APerson, IsUnconfirmedAtFirst) {
  const TrackedFrame frame = see(0.5F);
  ASSERT_THAT(frame.people, SizeIs(1));
  EXPECT_EQ(frame.people[0].id, 1U);
  EXPECT_FALSE(frame.people[0].isConfirmed);
}

TEST_F(APerson, IsConfirmedByTheThirdSighting) {
  see(0.5F);
  EXPECT_FALSE(see(0.5F).people.at(0).isConfirmed);
  EXPECT_TRUE(see(0.5F).people.at(0).isConfirmed);
}

TEST_F(APerson, IsNotStartedByAWeakSighting) {
  EXPECT_THAT(see(0.5F, weak).people, IsEmpty());
}

TEST_F(APerson, IsContinuedByAWeakSighting) {
  see(0.5F);
  const TrackedFrame frame = see(0.5F, weak);
  ASSERT_THAT(frame.people, SizeIs(1));
  EXPECT_EQ(frame.people[0].id, 1U);
  EXPECT_EQ(frame.people[0].margin, weak);
}

TEST_F(APerson, ThatIsNotConfirmedIsGoneAfterTwoFramesUnseen) {
  see(0.5F);
  EXPECT_THAT(seeNobody().gone, IsEmpty());
  EXPECT_THAT(seeNobody().gone, ElementsAre(1U));
  EXPECT_THAT(seeNobody().gone, IsEmpty());
}

TEST_F(AConfirmedPerson, KeepsTheIdWhileWalking) {
  for (int frame = 0; frame < 30; ++frame) {
    const TrackedFrame seen = see(0.1F + 0.02F * static_cast<float>(frame));
    ASSERT_THAT(seen.people, SizeIs(1));
    EXPECT_EQ(seen.people[0].id, 1U);
  }
}

TEST_F(AConfirmedPerson, IsNotReportedWhileUnseen) {
  seeOften(0.5F, 5);
  EXPECT_THAT(seeNobody().people, IsEmpty());
}

TEST_F(AConfirmedPerson, IsExpectedFurtherOnAfterAShortGap) {
  float x = 0.1F;
  for (int frame = 0; frame < 20; ++frame, x += 0.02F) {
    see(x);
  }
  seeNobodyFor(settings.framesExpected - 1);
  x += 0.02F * static_cast<float>(settings.framesExpected - 1);
  const TrackedFrame frame = see(x);
  ASSERT_THAT(frame.people, SizeIs(1));
  EXPECT_EQ(frame.people[0].id, 1U);
  EXPECT_THAT(frame.reappeared, IsEmpty());
}

TEST_F(AConfirmedPerson, WhoWalksOutOfTheImageIsGoneSoon) {
  for (int frame = 0; frame < 10; ++frame) {
    see(0.8F + 0.02F * static_cast<float>(frame));
  }
  std::vector<std::uint32_t> gone;
  for (int frame = 0; frame < settings.framesExpected && gone.empty(); ++frame) {
    gone = seeNobody().gone;
  }
  EXPECT_THAT(gone, ElementsAre(1U));
}

TEST_F(ALostPerson, IsGoneAfterTheTimeOfRemembering) {
  seeOften(0.5F, 5);
  EXPECT_THAT(seeNobodyFor(settings.framesExpected + settings.framesRemembered).gone, IsEmpty());
  EXPECT_THAT(seeNobody().gone, ElementsAre(1U));
}

TEST_F(ALostPerson, WhoReappearsNearbyIsConnectedOnceConfirmed) {
  seeOften(0.5F, 5);
  seeNobodyFor(settings.framesExpected + 10);
  EXPECT_THAT(seeOften(0.55F, 2).reappeared, IsEmpty());
  const TrackedFrame frame = see(0.55F);
  ASSERT_THAT(frame.reappeared, SizeIs(1));
  EXPECT_EQ(frame.reappeared[0].id, 2U);
  EXPECT_EQ(frame.reappeared[0].earlierId, 1U);
}

TEST_F(ALostPerson, WhoWasConnectedIsNotReportedAsGone) {
  seeOften(0.5F, 5);
  seeNobodyFor(settings.framesExpected + 10);
  seeOften(0.5F, settings.sightingsToConfirm);
  for (int frame = 0; frame < settings.framesRemembered + 10; ++frame) {
    EXPECT_THAT(see(0.5F).gone, IsEmpty());
  }
}

TEST_F(ALostPerson, IsNotConnectedWithSomebodyFarAway) {
  seeOften(0.2F, 5);
  seeNobodyFor(settings.framesExpected + 1);
  EXPECT_THAT(seeOften(0.8F, settings.sightingsToConfirm).reappeared, IsEmpty());
}

TEST_F(ALostPerson, IsNotConnectedWithSomebodyOfAnotherSize) {
  seeOften(0.5F, 5);
  seeNobodyFor(settings.framesExpected + 1);
  const Sighting child{{0.49F, 0.45F, 0.51F, 0.55F}, strong};
  for (int frame = 0; frame < settings.sightingsToConfirm; ++frame) {
    EXPECT_THAT(tracker.update({child}).reappeared, IsEmpty());
  }
}

TEST(TwoPeople, WhoPassEachOtherKeepTheirIds) {
  Tracker tracker;
  TrackedFrame frame;
  for (int i = 0; i <= 40; ++i) {
    const float x = 0.1F + 0.02F * static_cast<float>(i);
    frame = tracker.update({{personAt(x, 0.45F), strong}, {personAt(1 - x, 0.55F), strong}});
  }
  ASSERT_THAT(frame.people, SizeIs(2));
  EXPECT_EQ(frame.people[0].id, 1U);
  EXPECT_GT(frame.people[0].box.left, 0.8F);
  EXPECT_EQ(frame.people[1].id, 2U);
  EXPECT_LT(frame.people[1].box.left, 0.2F);
}

TEST(TwoPeople, GetDifferentIdsInOneFrame) {
  Tracker tracker;
  const TrackedFrame frame = tracker.update({{personAt(0.2F), strong}, {personAt(0.8F), strong}});
  ASSERT_THAT(frame.people, SizeIs(2));
  EXPECT_NE(frame.people[0].id, frame.people[1].id);
}

TEST(ABoxThatIsExpectedToLeaveTheImage, IsReportedClipped) {
  Tracker tracker;
  tracker.update({{{0.94F, 0.4F, 1, 0.6F}, strong}});
  const TrackedFrame frame = tracker.update({{{0.98F, 0.4F, 1.04F, 0.6F}, strong}});
  ASSERT_THAT(frame.people, SizeIs(1));
  EXPECT_EQ(frame.people[0].box.right, 1);
}
