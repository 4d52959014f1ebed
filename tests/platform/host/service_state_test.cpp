// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "client.h"

namespace vod::host {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;

const std::string scene = sceneWith({{0.5F, 0.5F}});

/** Result and answer of the two counting functions. */
std::pair<int, std::uint32_t> channels() {
  std::uint32_t count = 99;
  const int result = video_object_detection_subscriber_get_nbr_channels(&count);
  return {result, count};
}

std::pair<int, std::uint32_t> simultaneousChannels() {
  std::uint32_t count = 99;
  const int result = video_object_detection_subscriber_get_nbr_channels_simultaneously(&count);
  return {result, count};
}

class TheService : public HostTest {};

TEST_F(TheService, ReturnsItsVersion) {
  int major = 0;
  int minor = 0;
  EXPECT_EQ(video_object_detection_subscriber_get_version(&major, &minor), 0);
  EXPECT_EQ(std::pair(major, minor), std::pair(1, 0));
  setVersion(3, 14);
  EXPECT_EQ(video_object_detection_subscriber_get_version(&major, &minor), 0);
  EXPECT_EQ(std::pair(major, minor), std::pair(3, 14));
}

TEST_F(TheService, CountsItsChannelsByDefault) {
  EXPECT_THAT(channels(), Pair(0, 2));
  EXPECT_THAT(simultaneousChannels(), Pair(0, 2));
  channel(2);
  EXPECT_THAT(channels(), Pair(0, 3));
  setChannelCounts(8, 4);
  EXPECT_THAT(channels(), Pair(0, 8));
  EXPECT_THAT(simultaneousChannels(), Pair(0, 4));
}

TEST_F(TheService, IsEnabledByDefault) {
  EXPECT_TRUE(video_object_detection_subscriber_service_is_enabled());
  setEnabled(false);
  EXPECT_FALSE(video_object_detection_subscriber_service_is_enabled());
}

TEST_F(TheService, HasNoChannelBeyondItsOwn) {
  EXPECT_NE(Client(2).createResult(), 0);
  EXPECT_NE(Client(-1).createResult(), 0);
}

TEST_F(TheService, ThrowsForAnAbsentChannel) {
  EXPECT_THROW(servedChannel(7), std::out_of_range);
  EXPECT_EQ(servedChannel(1).number(), 1);
}

class AServiceThatIsDown : public HostTest {
 protected:
  AServiceThatIsDown() {
    first_.subscribe();
    second_.subscribe();
    takeServiceDown();
    drain();
  }
  Client first_{0};
  Client second_{1};
};

TEST_F(AServiceThatIsDown, HasDroppedTheSubscriptionsOfAllChannels) {
  EXPECT_EQ(first_.teardowns(), 1);
  EXPECT_EQ(second_.teardowns(), 1);
  EXPECT_THAT(channel(0).subscriptions(), IsEmpty());
}

TEST_F(AServiceThatIsDown, FailsWhatNeedsIt) {
  EXPECT_NE(Client(0).createResult(), 0);
  EXPECT_NE(first_.trySubscribe(), 0);
  EXPECT_NE(video_object_detection_set_channel_configuration(0, nullptr, 0, nullptr), 0);
  EXPECT_THAT(channels(), Pair(testing::Ne(0), 99));
  EXPECT_THAT(simultaneousChannels(), Pair(testing::Ne(0), 99));
}

TEST_F(AServiceThatIsDown, LetsSubscribersGo) {
  EXPECT_EQ(first_.unsubscribe(), 0);
  EXPECT_EQ(first_.remove(), 0);
  EXPECT_EQ(liveSubscribers(), 1);
}

TEST_F(AServiceThatIsDown, StillReturnsItsVersionAndWhetherItIsEnabled) {
  int major = 0;
  int minor = 0;
  EXPECT_EQ(video_object_detection_subscriber_get_version(&major, &minor), 0);
  EXPECT_TRUE(video_object_detection_subscriber_service_is_enabled());
}

TEST_F(AServiceThatIsDown, ServesAgainWhenItIsUp) {
  bringServiceUp();
  first_.subscribe();
  channel(0).pushScene(scene);
  drain();
  EXPECT_THAT(first_.scenes(), ElementsAre(scene));
}

class AReset : public HostTest {};

TEST_F(AReset, ForgetsEverything) {
  Client client(0);
  client.subscribe();
  setVersion(3, 14);
  setChannelCounts(8, 4);
  setEnabled(false);
  takeServiceDown();
  plan(Fault(Function::Create).always().failsWith(1));
  reset();
  channel(0);
  EXPECT_EQ(liveSubscribers(), 0);
  EXPECT_THAT(journal(), IsEmpty());
  EXPECT_THAT(channels(), Pair(0, 1));
  EXPECT_TRUE(video_object_detection_subscriber_service_is_enabled());
  clearJournal();
  EXPECT_EQ(Client(0).createResult(), 0);
  EXPECT_THAT(journal(), ElementsAre("create(channel=0)", "delete(#1)"));
  EXPECT_NE(client.remove(), 0) << "its handle is from before";
  EXPECT_EQ(callsWithBadHandles(), 1);
  reset();
}

TEST_F(AReset, DropsScenesThatHaveNotBeenDelivered) {
  const Gate gate;
  Client client(0, {[&](Client&) { gate.pass(); }, {}});
  client.subscribe();
  channel(0).pushScene(scene).pushScene(scene);
  gate.waitUntilReached();
  reset();
  EXPECT_THAT(client.scenes(), ElementsAre(scene));
  EXPECT_NE(client.remove(), 0);
}

}  // namespace
}  // namespace vod::host
