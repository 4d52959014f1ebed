// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

// Callbacks of subscriptions that are over, and drops of subscriptions that have not quite begun.

#include "handler/handler_test.h"

namespace tarn::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

/** Of a subscriber that has been deleted: the platform need not wait for a callback that is on its way. */
class ALateCallback : public HandlerTest {
 protected:
  static void deliverNothing(const vod::host::Registration& to) {
    const std::uint8_t nothing = 0;
    to.detection(&nothing, 0, to.userData);
  }
};

TEST_F(ALateCallback, OfADeletedSubscriberReadsValidMemoryAndFindsItsCameraGone) {
  setUp(1);
  const vod::host::Registration old = vod::host::registration(2);
  Handler::teardown(1);
  deliverNothing(old);
  old.teardown(old.userData);
  EXPECT_EQ(inbox_.size(), 0U);
}

TEST_F(ALateCallback, OfASubscriberThatASetUpGaveBackFindsItsCameraGone) {
  vod::host::plan(Fault(Function::Subscribe).failsWith(1));
  setUp(1);
  const vod::host::Registration old = vod::host::registration(2);
  Handler::teardown(1);
  deliverNothing(old);
  EXPECT_EQ(inbox_.size(), 0U);
}

TEST_F(ALateCallback, ThatDropsAnEarlierSubscriptionOfTheCameraLeavesTheNewerOneAlone) {
  setUp(1);
  const vod::host::Registration old = vod::host::registration(2);
  Handler::teardown(1);
  setUp(1);
  vod::host::clearJournal();
  old.teardown(old.userData);
  EXPECT_THAT(vod::host::journal(), IsEmpty());
  EXPECT_THAT(classesAfter(1, sceneOf({1})), ElementsAre(ElementsAre("human")));
}

TEST_F(ALateCallback, ThatDropsASubscriptionWhichWasRetriedSinceLeavesTheNewerOneAlone) {
  setUp(1);
  const vod::host::Registration old = vod::host::registration(2);
  vod::host::channel(0).dropSubscriptions();
  vod::host::drain();
  retryOnce();
  vod::host::clearJournal();
  old.teardown(old.userData);
  EXPECT_THAT(vod::host::journal(), IsEmpty());
  EXPECT_THAT(classesAfter(1, sceneOf({1})), ElementsAre(ElementsAre("human")));
}

TEST_F(ALateCallback, WithAFrameOfAnEarlierSubscriptionOfTheCameraDeliversNothing) {
  setUp(1);
  const vod::host::Registration old = vod::host::registration(2);
  Handler::teardown(1);
  setUp(1);
  deliverNothing(old);
  EXPECT_EQ(inbox_.size(), 0U);
}

TEST_F(ALateCallback, ThatDropsACameraWhichIsOnlyPendingChangesNothing) {
  vod::host::plan(Fault(Function::Subscribe).failsWith(1));
  setUp(1, {"human"});
  const vod::host::Registration old = vod::host::registration(2);
  vod::host::clearJournal();
  old.teardown(old.userData);
  EXPECT_THAT(vod::host::journal(), IsEmpty());
  retryOnce();
  EXPECT_THAT(vod::host::channel(0).subscriptions(), SizeIs(1));
  EXPECT_THAT(classesAfter(1, sceneOf({1, 5})), ElementsAre(ElementsAre("human")));
}

TEST_F(ALateCallback, ThatDropsEveryEarlierSubscriptionOfTheCameraLeavesThePresentOneAlone) {
  std::vector<vod::host::Registration> old;
  for (int subscriber = 2; subscriber < 300; subscriber += 3) {
    setUp(1);
    old.push_back(vod::host::registration(subscriber));
    Handler::teardown(1);
  }
  setUp(1);
  for (const vod::host::Registration& registration : old) {
    registration.teardown(registration.userData);
  }
  EXPECT_THAT(classesAfter(1, sceneOf({1})), ElementsAre(ElementsAre("human")));
}

/** The service drops a subscription on the thread that sets it up, before the set-up is through. */
class ADropDuringASetUp : public HandlerTest {
 protected:
  static Fault& dropSubscriber(Fault& inside, int subscriber) {
    return inside.runs([subscriber] {
      const vod::host::Registration registration = vod::host::registration(subscriber);
      registration.teardown(registration.userData);
    });
  }
};

TEST_F(ADropDuringASetUp, FailsTheSetUpAndParksTheCamera) {
  Fault inside(Function::Subscribe);
  vod::host::plan(dropSubscriber(inside, 2));
  EXPECT_FALSE(setUp(1, {"human"}));
  EXPECT_THAT(log_.lines(), ElementsAre(LogLine{LOG_INFO, "Failed to subscribe to vod data.\n"}));
  EXPECT_EQ(vod::host::liveSubscribers(), 0);
  retryOnce();
  EXPECT_THAT(classesAfter(1, sceneOf({1, 5})), ElementsAre(ElementsAre("human")));
}

TEST_F(ADropDuringASetUp, IsNoticedAsWellWhenItComesAfterSubscribing) {
  Fault inside(Function::GetInformation);
  vod::host::plan(dropSubscriber(inside.onCall(3), 2));
  EXPECT_FALSE(setUp(1, {"human"}));
  EXPECT_EQ(vod::host::liveSubscribers(), 0);
  retryOnce();
  EXPECT_THAT(classesAfter(1, sceneOf({1, 5})), ElementsAre(ElementsAre("human")));
}

TEST_F(ADropDuringASetUp, OnTheRetryThreadLeavesTheCameraToTheNextRound) {
  setUp(1, {"human"});
  vod::host::channel(0).dropSubscriptions();
  vod::host::drain();
  Fault inside(Function::Subscribe);
  vod::host::plan(dropSubscriber(inside, 5));
  retryOnce();
  EXPECT_THAT(vod::host::channel(0).subscriptions(), IsEmpty());
  sleep_.release();
  sleep_.waitUntilAsleep();
  EXPECT_THAT(classesAfter(1, sceneOf({1, 5})), ElementsAre(ElementsAre("human")));
}

TEST_F(ADropDuringASetUp, OfAnEarlierSubscriptionOfTheCameraDoesNotMatter) {
  setUp(1);
  Handler::teardown(1);
  Fault inside(Function::Subscribe);
  vod::host::plan(dropSubscriber(inside, 2));
  EXPECT_TRUE(setUp(1));
  EXPECT_THAT(classesAfter(1, sceneOf({1})), ElementsAre(ElementsAre("human")));
}

TEST_F(ADropDuringASetUp, IsNoticedInEachOfTwoSetUpsThatRunInsideOneAnother) {
  Fault outer(Function::Subscribe);
  vod::host::plan(outer.runs([this] {
    const vod::host::Registration first = vod::host::registration(2);
    first.teardown(first.userData);
    Fault inner(Function::Subscribe);
    vod::host::plan(dropSubscriber(inner, 4));
    EXPECT_FALSE(setUp(2));
  }));
  EXPECT_FALSE(setUp(1));
  EXPECT_EQ(vod::host::liveSubscribers(), 0);
  retryOnce();
  EXPECT_THAT(vod::host::channel(0).subscriptions(), SizeIs(1));
  EXPECT_THAT(vod::host::channel(1).subscriptions(), SizeIs(1));
}

TEST_F(ADropDuringASetUp, IsNoticedWhileAnotherSetUpRunsInsideIt) {
  Fault outer(Function::Subscribe);
  vod::host::plan(outer.runs([this] {
    Fault inner(Function::Subscribe);
    vod::host::plan(dropSubscriber(inner, 2));
    EXPECT_TRUE(setUp(2));
  }));
  EXPECT_FALSE(setUp(1));
  EXPECT_THAT(vod::host::channel(0).subscriptions(), IsEmpty());
  EXPECT_THAT(vod::host::channel(1).subscriptions(), SizeIs(1));
  retryOnce();
  EXPECT_THAT(vod::host::channel(0).subscriptions(), SizeIs(1));
}

}  // namespace
}  // namespace tarn::test
