// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "client.h"

#include <stdexcept>

namespace vod::host {
namespace {

using testing::ElementsAre;

const std::string scene = sceneWith({{0.5F, 0.5F}});

class AHostilePlatform : public HostTest {};

TEST_F(AHostilePlatform, DeliversASceneOnTheCallersThreadBeforeSubscribeReturns) {
  deliverDuringSubscribe(scene);
  bool hadReturned = true;
  Client client(0, {[&](Client&) { hadReturned = calls().back().result.has_value(); }, {}});
  client.subscribe();
  EXPECT_FALSE(hadReturned);
  const auto received = client.received();
  ASSERT_EQ(received.size(), 1U);
  EXPECT_EQ(received[0].bytes, scene);
  EXPECT_EQ(received[0].thread, std::this_thread::get_id());
}

TEST_F(AHostilePlatform, DoesNotSubscribeWhatItsSceneHasDeleted) {
  deliverDuringSubscribe(scene);
  Client client(0, {[](Client& self) { EXPECT_EQ(self.remove(), 0); }, {}});
  EXPECT_NE(client.trySubscribe(), 0);
  channel(0).pushScene(scene);
  drain();
  EXPECT_THAT(client.scenes(), ElementsAre(scene));
  EXPECT_THAT(channel(0).subscriptions(), testing::IsEmpty());
}

TEST_F(AHostilePlatform, TearsDownDuringARunningDetection) {
  teardownDuringDetection(true);
  const Gate gate;
  Client client(0, {[&](Client&) { gate.pass(); }, {}});
  client.subscribe();
  channel(0).pushScene(scene);
  gate.waitUntilReached();
  channel(0).dropSubscriptions();
  client.waitForTeardowns(1);
  gate.open();
  drain();
  EXPECT_TRUE(client.hasOverlapped());
}

TEST_F(AHostilePlatform, CallsADeletedSubscriberIfTheTestDoes) {
  Client client(0);
  client.subscribe();
  EXPECT_EQ(client.remove(), 0);
  const Registration old = registration(1);
  EXPECT_TRUE(old.deleted);
  EXPECT_EQ(old.channel, 0);
  EXPECT_EQ(old.userData, &client);
  old.detection(reinterpret_cast<const std::uint8_t*>(scene.data()), static_cast<std::int32_t>(scene.size()),
                old.userData);
  old.teardown(old.userData);
  EXPECT_THAT(client.scenes(), ElementsAre(scene));
  EXPECT_EQ(client.teardowns(), 1);
}

TEST_F(AHostilePlatform, IsUpAgainBeforeACallThatItMadeFailReturns) {
  takeServiceDown();
  plan(Fault(Function::Create).failsWith(9).bringsServiceUp());
  EXPECT_EQ(Client(0).createResult(), 9);
  EXPECT_EQ(Client(0).createResult(), 0);
}

TEST_F(AHostilePlatform, KnowsASubscriberOnlyWhileItLivesWhenNothingIsRecorded) {
  recordCalls(false);
  Client client(0);
  EXPECT_EQ(registration(1).userData, &client);
  EXPECT_EQ(client.remove(), 0);
  EXPECT_THROW(registration(1), std::out_of_range);
}

TEST_F(AHostilePlatform, CountsWhatCallbacksThrowIfWanted) {
  catchCallbackExceptions(true);
  Client client(0, {[](Client&) { throw std::runtime_error("thrown"); }, [](Client&) { throw 1; }});
  client.subscribe();
  channel(0).pushScene(scene).pushScene(scene).dropSubscriptions();
  drain();
  EXPECT_EQ(caughtCallbackExceptions(), 3);
}

using AHostilePlatformDeathTest = AHostilePlatform;

TEST_F(AHostilePlatformDeathTest, EndsTheProcessWhenACallbackThrows) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  EXPECT_DEATH(
      {
        Client client(0, {[](Client&) { throw std::runtime_error("thrown by a callback"); }, {}});
        client.subscribe();
        channel(0).deliverScene(scene);
      },
      "thrown by a callback");
}

int entered = 0;
int left = 0;

TEST_F(AHostilePlatform, LetsTheTestLookAroundEveryCall) {
  entered = left = 0;
  aroundCalls([] { ++entered; }, [] { ++left; });
  Client(0).receiveEmptyHits();
  EXPECT_EQ(entered, 3);
  EXPECT_EQ(left, 3);
  aroundCalls(nullptr, nullptr);
  Client(0).receiveEmptyHits();
  EXPECT_EQ(entered, 3);
}

}  // namespace
}  // namespace vod::host
