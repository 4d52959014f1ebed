// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "handler/handler_test.h"
#include "handler/on_release.h"

#include <climits>

namespace tarn::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

using ANewCamera = HandlerTest;

TEST_F(ANewCamera, IsSubscribedByTheseCallsInThisOrder) {
  EXPECT_TRUE(setUp(1));
  EXPECT_THAT(vod::host::journal(),
              ElementsAre("create(channel=0)", "get_information(#1)", "delete(#1)",  // checks the classes
                          "create(channel=0)", "set_get_detection_callback(#2)", "set_teardown_callback(#2)",
                          "set_receive_empty_hits(#2, true)", "subscribe(#2)", "get_information(#2)",
                          "create(channel=0)", "get_information(#3)", "delete(#3)"));  // reads the attribute names
  EXPECT_THAT(log_.lines(), IsEmpty());
}

TEST_F(ANewCamera, WithARegionHasItConfiguredBeforeItIsSubscribed) {
  EXPECT_TRUE(setUp(1, {"human"}, VOD::VodChannelConfiguration{0.25F, -1.5F, 0.75F, 2.0F}));
  EXPECT_THAT(
      vod::host::journal(),
      ElementsAre("create(channel=0)", "get_information(#1)", "delete(#1)", "create(channel=0)",
                  "set_get_detection_callback(#2)", "set_teardown_callback(#2)", "set_receive_empty_hits(#2, true)",
                  "set_channel_configuration(channel=0, roi=[0.25, -1.5, 0.75, 2])",
                  "use_channel_configuration(#2, true)", "subscribe(#2)", "get_information(#2)", "create(channel=0)",
                  "get_information(#3)", "delete(#3)"));
}

TEST_F(ANewCamera, WithARegionOfZerosStillSendsTheRegion) {
  EXPECT_TRUE(setUp(1, {"human"}, VOD::VodChannelConfiguration{0, 0, 0, 0}));
  for (const vod::host::Call& call : vod::host::calls()) {
    if (call.function == Function::SetChannelConfiguration) {
      EXPECT_EQ(call.bytes, std::string("\x0A\x00", 2));  // roi: an empty box
      EXPECT_EQ(call.channel, 0);
      return;
    }
  }
  FAIL() << "no region was sent";
}

TEST_F(ANewCamera, WithTheThreeArgumentSetUpHasNoRegion) {
  EXPECT_TRUE(Handler::setup(1, inbox_.callback(), {"human"}));
  EXPECT_THAT(vod::host::journal(), Not(testing::Contains(testing::StartsWith("set_channel_configuration"))));
  EXPECT_THAT(vod::host::journal(), Not(testing::Contains(testing::StartsWith("use_channel_configuration"))));
}

TEST_F(ANewCamera, GivesThePlatformTheAddressOfItsNumberAsUserData) {
  EXPECT_TRUE(setUp(2));
  EXPECT_EQ(*static_cast<const std::int32_t*>(vod::host::registration(2).userData), 2);
  EXPECT_EQ(vod::host::registration(1).userData, nullptr) << "the one that only asks has no user data";
}

TEST_F(ANewCamera, UsesTheChannelBelowItsNumber) {
  EXPECT_TRUE(setUp(2));
  EXPECT_THAT(vod::host::channel(1).subscriptions(), ElementsAre(2));
}

TEST_F(ANewCamera, NumberedZeroAsksForChannelMinusOne) {
  EXPECT_FALSE(setUp(0));
  EXPECT_THAT(vod::host::journal(), ElementsAre("create(channel=-1)"));
}

TEST_F(ANewCamera, WithTheLeastNumberThereIsAsksForTheGreatestChannel) {
  EXPECT_FALSE(setUp(INT_MIN));
  EXPECT_THAT(vod::host::journal(), ElementsAre("create(channel=2147483647)"));
  Handler::teardown(INT_MIN);
}

TEST_F(ANewCamera, WithoutAnyClassIsSubscribed) {
  EXPECT_TRUE(setUp(1, {}));
  EXPECT_THAT(classesAfter(1, sceneOf({1, 5})), ElementsAre(IsEmpty()));
}

TEST_F(ANewCamera, WithAnUnsupportedClassFailsBeforeItIsSubscribed) {
  EXPECT_FALSE(setUp(1, {"human", "unicorn"}));
  EXPECT_THAT(vod::host::journal(), ElementsAre("create(channel=0)", "get_information(#1)", "delete(#1)"));
  EXPECT_THAT(log_.lines(), ElementsAre(LogLine{LOG_INFO, "Not all requested classes are supported\n"}));
}

TEST_F(ANewCamera, WithAClassInUpperCaseFails) {
  EXPECT_FALSE(setUp(1, {"Human"}));
}

TEST_F(ANewCamera, WithAnUnsupportedClassIsRetriedWithoutAnyClass) {
  EXPECT_FALSE(setUp(1, {"human", "unicorn"}));
  retryOnce();
  EXPECT_THAT(classesAfter(1, sceneOf({1, 5})), ElementsAre(IsEmpty()));
}

class AnActiveCamera : public HandlerTest {
 protected:
  AnActiveCamera() {
    setUp(1, {"human"});
    vod::host::clearJournal();
  }
};

TEST_F(AnActiveCamera, IsUpdatedWithoutPlatformCallsButTheQuestionForItsDetector) {
  EXPECT_TRUE(setUp(1, {"car"}));
  EXPECT_THAT(vod::host::journal(), ElementsAre("get_information(#2)"));
  EXPECT_THAT(classesAfter(1, sceneOf({1, 5})), ElementsAre(ElementsAre("car")));
}

TEST_F(AnActiveCamera, DeliversToTheNewCallbackOnlyOnceUpdated) {
  Inbox other;
  EXPECT_TRUE(Handler::setup(1, other.callback(), {"human"}));
  EXPECT_THAT(classesAfter(1, sceneOf({1})), IsEmpty());
  EXPECT_EQ(other.size(), 1U);
}

TEST_F(AnActiveCamera, IgnoresANewRegion) {
  EXPECT_TRUE(setUp(1, {"human"}, VOD::VodChannelConfiguration{0, 0, 1, 1}));
  EXPECT_THAT(vod::host::journal(), ElementsAre("get_information(#2)"));
}

TEST_F(AnActiveCamera, KeepsItsOldRegionWhenItIsSubscribedAgainAfterAnUpdate) {
  EXPECT_TRUE(setUp(1, {"human"}, VOD::VodChannelConfiguration{0, 0, 1, 1}));
  vod::host::channel(0).dropSubscriptions();
  vod::host::drain();
  retryOnce();
  EXPECT_THAT(vod::host::journal(), Not(testing::Contains(testing::StartsWith("set_channel_configuration"))));
}

TEST_F(AnActiveCamera, IsSubscribedAgainWithTheClassesOfItsLastUpdate) {
  EXPECT_TRUE(setUp(1, {"car"}));
  vod::host::channel(0).dropSubscriptions();
  vod::host::drain();
  retryOnce();
  EXPECT_THAT(classesAfter(1, sceneOf({1, 5})), ElementsAre(ElementsAre("car")));
}

TEST_F(AnActiveCamera, StaysAsItIsAfterAnUpdateToAnUnsupportedClassFailed) {
  EXPECT_FALSE(setUp(1, {"unicorn"}));
  EXPECT_THAT(log_.lines(), ElementsAre(LogLine{LOG_INFO, "Not all requested classes are supported\n"}));
  EXPECT_THAT(vod::host::journal(), ElementsAre("get_information(#2)"));
  EXPECT_THAT(classesAfter(1, sceneOf({1, 5})), ElementsAre(ElementsAre("human")));
}

TEST_F(AnActiveCamera, LosesItsClassesWhenAFailedUpdateIsRetried) {
  EXPECT_FALSE(setUp(1, {"unicorn"}));
  retryOnce();
  EXPECT_THAT(classesAfter(1, sceneOf({1, 5})), ElementsAre(IsEmpty()));
  EXPECT_EQ(vod::host::liveSubscribers(), 1);
}

TEST_F(AnActiveCamera, DoesNotEndARunOfFailuresWhenItIsUpdated) {
  vod::host::plan(Fault(Function::Subscribe).always().failsWith(1));
  for (int attempt = 0; attempt < 5; ++attempt) {
    EXPECT_FALSE(setUp(2));
  }
  EXPECT_TRUE(setUp(1));
  EXPECT_FALSE(setUp(2));
  EXPECT_THAT(log_.lines(), ElementsAre(LogLine{LOG_INFO, "Failed to subscribe to vod data.\n"},
                                        LogLine{LOG_WARNING, "Failed to subscribe to vod data.\n"}));
}

class APendingCamera : public HandlerTest {
 protected:
  APendingCamera() {
    const int fault = vod::host::plan(Fault(Function::Subscribe).failsWith(1));
    setUp(1, {"human"});
    vod::host::lift(fault);
    vod::host::clearJournal();
  }
};

TEST_F(APendingCamera, IsReplacedByANewSetUp) {
  EXPECT_TRUE(setUp(1, {"car"}));
  EXPECT_THAT(classesAfter(1, sceneOf({1, 5})), ElementsAre(ElementsAre("car")));
  vod::host::clearJournal();
  retryOnce();
  EXPECT_THAT(vod::host::journal(), IsEmpty()) << "nothing was left to retry";
}

TEST_F(APendingCamera, IsDestroyedWithItsCallableBeforeANewSetUpAsksThePlatform) {
  std::vector<std::size_t> callsBefore;
  Handler::setup(2, [token = onRelease([&] { callsBefore.push_back(vod::host::calls().size()); })](auto&&, int) {},
                 {"unicorn"});
  vod::host::clearJournal();
  EXPECT_TRUE(setUp(2));
  EXPECT_THAT(callsBefore, ElementsAre(0U));
}

TEST_F(APendingCamera, IsDestroyedAsWellWhenTheNewSetUpFails) {
  std::vector<std::size_t> callsBefore;
  Handler::setup(2, [token = onRelease([&] { callsBefore.push_back(vod::host::calls().size()); })](auto&&, int) {},
                 {"unicorn"});
  vod::host::clearJournal();
  EXPECT_FALSE(setUp(2, {"dragon"}));
  EXPECT_THAT(callsBefore, ElementsAre(0U));
}

TEST_F(APendingCamera, WhoseCallablesDestructorSetsItUpIsUpdatedByTheSetUpThatDestroyedIt) {
  Handler::setup(2, [token = onRelease([this] { setUp(2, {"human"}); })](auto&&, int) {}, {"unicorn"});
  EXPECT_TRUE(setUp(2, {"car"}));
  EXPECT_EQ(vod::host::liveSubscribers(), 1);
  EXPECT_THAT(classesAfter(2, sceneOf({1, 5})), ElementsAre(ElementsAre("car")));
}

TEST_F(APendingCamera, IsRetriedAsTheLastFailedSetUpWantedIt) {
  vod::host::plan(Fault(Function::Subscribe).failsWith(1));
  EXPECT_FALSE(setUp(1, {"car"}, VOD::VodChannelConfiguration{0.5F, 0, 1, 1}));
  vod::host::clearJournal();
  retryOnce();
  EXPECT_THAT(vod::host::journal(), testing::Contains("set_channel_configuration(channel=0, roi=[0.5, 0, 1, 1])"));
  EXPECT_THAT(classesAfter(1, ""), ElementsAre(IsEmpty()));
}

TEST_F(APendingCamera, ReceivesNothing) {
  EXPECT_THAT(vod::host::channel(0).subscriptions(), IsEmpty());
  EXPECT_EQ(vod::host::liveSubscribers(), 0);
}

}  // namespace
}  // namespace tarn::test
