// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "client.h"

namespace vod::host {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

const std::string scene = sceneWith({{0.5F, 0.5F}});

class ADroppedSubscription : public HostTest {};

TEST_F(ADroppedSubscription, IsReportedAfterTheScenesThatWerePushedBefore) {
  std::size_t scenesBefore = 0;
  Client client(0, {{}, [&](const Client& self) { scenesBefore = self.scenes().size(); }});
  client.subscribe();
  channel(0).pushScene(scene).pushScene(scene).dropSubscriptions().pushScene(scene);
  drain();
  EXPECT_EQ(client.teardowns(), 1);
  EXPECT_EQ(scenesBefore, 2U);
  EXPECT_EQ(client.scenes().size(), 2U);
}

TEST_F(ADroppedSubscription, LeavesTheSubscriberToBeDeleted) {
  Client client(0);
  client.subscribe();
  channel(0).dropSubscriptions();
  drain();
  EXPECT_EQ(liveSubscribers(), 1);
  EXPECT_EQ(client.remove(), 0);
  EXPECT_EQ(liveSubscribers(), 0);
}

TEST_F(ADroppedSubscription, CanBeTakenUpAgain) {
  Client client(0);
  client.subscribe();
  channel(0).dropSubscriptions();
  drain();
  client.subscribe();
  channel(0).pushScene(scene);
  drain();
  EXPECT_THAT(client.scenes(), ElementsAre(scene));
}

TEST_F(ADroppedSubscription, IsThatOfEverySubscriberOfTheChannelOnly) {
  Client first(0);
  Client second(0);
  Client idle(0);
  Client other(1);
  first.subscribe();
  second.subscribe();
  other.subscribe();
  channel(0).dropSubscriptions();
  drain();
  EXPECT_EQ(first.teardowns(), 1);
  EXPECT_EQ(second.teardowns(), 1);
  EXPECT_EQ(idle.teardowns(), 0);
  EXPECT_EQ(other.teardowns(), 0);
  EXPECT_THAT(channel(0).subscriptions(), IsEmpty());
  EXPECT_THAT(channel(1).subscriptions(), ElementsAre(4));
}

TEST_F(ADroppedSubscription, IsNotReportedToASubscriberThatHasLeft) {
  const Gate gate;
  Client blocking(0, {[&](Client&) { gate.pass(); }, {}});
  Client leaving(0);
  blocking.subscribe();
  leaving.subscribe();
  channel(0).pushScene(scene);
  gate.waitUntilReached();
  channel(0).dropSubscriptions();
  EXPECT_EQ(leaving.unsubscribe(), 0);
  gate.open();
  drain();
  EXPECT_EQ(blocking.teardowns(), 1);
  EXPECT_EQ(leaving.teardowns(), 0);
}

}  // namespace
}  // namespace vod::host
