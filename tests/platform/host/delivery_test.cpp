// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "client.h"

namespace vod::host {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

const std::string oneDetection = sceneWith({{0.5F, 0.5F}}, 7);
const std::string twoDetections = sceneWith({{0.2F, 0.2F}, {0.5F, 0.5F}}, 8);

class Delivery : public HostTest {};

TEST_F(Delivery, ReachesEverySubscriberOfTheChannelInOrder) {
  Client first(0);
  Client second(0);
  Client other(1);
  first.subscribe();
  second.subscribe();
  other.subscribe();
  channel(0).pushScene(oneDetection).pushScene(twoDetections);
  drain();
  EXPECT_THAT(first.scenes(), ElementsAre(oneDetection, twoDetections));
  EXPECT_THAT(second.scenes(), ElementsAre(oneDetection, twoDetections));
  EXPECT_THAT(other.scenes(), IsEmpty());
}

TEST_F(Delivery, KeepsUnknownFieldsByteForByte) {
  // Field 15 of the scene, and field 10 inside the detection, are unknown; the length of the detection has a spare
  // byte.
  const std::string scene = std::string("\x7a\x02hi\x12\x85\x00\x28\x01\x52\x01x", 13);
  Client client(0);
  client.subscribe();
  channel(0).pushScene(scene);
  drain();
  EXPECT_THAT(client.scenes(), ElementsAre(scene));
}

TEST_F(Delivery, KeepsLargeScenesByteForByte) {
  const std::vector<std::string> scenes = {largeScene(200), largeScene(5'000), largeScene(50'000)};
  Client client(0);
  client.subscribe();
  for (const std::string& scene : scenes) {
    channel(0).pushScene(scene);
  }
  drain();
  EXPECT_EQ(client.scenes(), scenes);
}

TEST_F(Delivery, BeginsWithTheScenesThatArePushedAfterTheSubscription) {
  Client client(0);
  channel(0).pushScene(oneDetection);
  client.subscribe();
  channel(0).pushScene(twoDetections);
  drain();
  EXPECT_THAT(client.scenes(), ElementsAre(twoDetections));
}

TEST_F(Delivery, EndsWithTheSubscriptionAndBeginsAgainWithTheNext) {
  Client client(0);
  client.subscribe();
  EXPECT_EQ(client.unsubscribe(), 0);
  channel(0).pushScene(oneDetection);
  drain();
  EXPECT_THAT(client.scenes(), IsEmpty());
  client.subscribe();
  channel(0).pushScene(twoDetections);
  drain();
  EXPECT_THAT(client.scenes(), ElementsAre(twoDetections));
}

TEST_F(Delivery, LeavesOutScenesThatWereMeantForAnEarlierSubscription) {
  const Gate gate;
  Client blocking(0, {[&](Client&) { gate.pass(); }, {}});
  Client client(0);
  blocking.subscribe();
  client.subscribe();
  channel(0).pushScene(oneDetection);
  gate.waitUntilReached();
  EXPECT_EQ(client.unsubscribe(), 0);
  client.subscribe();
  gate.open();
  drain();
  EXPECT_THAT(client.scenes(), IsEmpty());
}

TEST_F(Delivery, LeavesOutEmptyScenesUnlessTheyAreAskedFor) {
  Client client(0);
  Client all(0);
  client.subscribe();
  all.receiveEmptyHits().subscribe();
  channel(0).pushScene(emptyScene(1)).pushScene("").pushScene(oneDetection);
  drain();
  EXPECT_THAT(client.scenes(), ElementsAre(oneDetection));
  EXPECT_THAT(all.scenes(), ElementsAre(emptyScene(1), "", oneDetection));
}

TEST_F(Delivery, PassesInvalidScenesOn) {
  Client client(0);
  client.subscribe();
  const std::string cutOff = oneDetection.substr(0, oneDetection.size() - 1);
  channel(0).pushScene(cutOff).pushScene("\xff");
  drain();
  EXPECT_THAT(client.scenes(), ElementsAre(cutOff, "\xff"));
}

TEST_F(Delivery, ReportsTheLengthThatTheTestSets) {
  Client client(0);
  client.subscribe();
  channel(0).pushSceneOfLength(oneDetection, 0).pushSceneOfLength(oneDetection, -1).pushSceneOfLength(oneDetection, 2);
  drain();
  const auto received = client.received();
  ASSERT_EQ(received.size(), 3U);
  EXPECT_EQ(received[0].length, 0);
  EXPECT_EQ(received[1].length, -1);
  EXPECT_EQ(received[2].bytes, oneDetection.substr(0, 2));
  EXPECT_FALSE(received[0].isNull);
}

TEST_F(Delivery, OfANullBufferIsPossible) {
  Client client(0);
  client.subscribe();
  channel(0).pushNullScene().pushNullScene(5);
  drain();
  const auto received = client.received();
  ASSERT_EQ(received.size(), 2U);
  EXPECT_TRUE(received[0].isNull);
  EXPECT_EQ(received[0].length, 0);
  EXPECT_TRUE(received[1].isNull);
  EXPECT_EQ(received[1].length, 5);
}

TEST_F(Delivery, NeedsNoDetectionCallback) {
  Client client(0);
  EXPECT_EQ(video_object_detection_subscriber_subscribe(client.handle()), 0);
  channel(0).pushScene(oneDetection).dropSubscriptions();
  drain();
  EXPECT_THAT(channel(0).subscriptions(), IsEmpty());
}

TEST_F(Delivery, CanHappenOnTheThreadOfTheTest) {
  Client client(0);
  client.subscribe();
  channel(0).deliverScene(oneDetection);
  const auto received = client.received();
  ASSERT_EQ(received.size(), 1U);
  EXPECT_EQ(received[0].bytes, oneDetection);
  EXPECT_EQ(received[0].thread, std::this_thread::get_id());
}

}  // namespace
}  // namespace vod::host
