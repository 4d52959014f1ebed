// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "client.h"

#include <atomic>

namespace vod::host {
namespace {

using testing::ElementsAre;
using testing::Ne;

const std::string scene = sceneWith({{0.5F, 0.5F}});

class Callbacks : public HostTest {};

TEST_F(Callbacks, RunOnThreadsOfThePlatform) {
  Client client(0);
  client.subscribe();
  channel(0).pushScene(scene).dropSubscriptions();
  drain();
  ASSERT_EQ(client.received().size(), 1U);
  EXPECT_NE(client.received()[0].thread, std::this_thread::get_id());
  EXPECT_THAT(client.teardownThreads(), ElementsAre(Ne(std::this_thread::get_id())));
}

TEST_F(Callbacks, OfDifferentChannelsRunOnDifferentThreads) {
  const Gate gate;
  Client blocked(0, {[&](Client&) { gate.pass(); }, {}});
  Client free(1);
  blocked.subscribe();
  free.subscribe();
  channel(0).pushScene(scene);
  gate.waitUntilReached();
  channel(1).pushScene(scene);
  free.waitForScenes(1);
  gate.open();
}

TEST_F(Callbacks, OfAllChannelsRunOnOneThreadIfWanted) {
  callbackThreads(Threads::OneForAll);
  Client first(0);
  Client second(1);
  first.subscribe();
  second.subscribe();
  channel(0).pushScene(scene);
  channel(1).pushScene(scene);
  drain();
  ASSERT_EQ(first.received().size(), 1U);
  ASSERT_EQ(second.received().size(), 1U);
  EXPECT_EQ(first.received()[0].thread, second.received()[0].thread);
}

TEST_F(Callbacks, OfOneSubscriberNeverRunConcurrently) {
  const Gate gate;
  Client client(0, {[&](Client&) { gate.pass(); }, {}});
  client.subscribe();
  channel(0).pushScene(scene);
  gate.waitUntilReached();
  // Both would run now, on two more threads, if they did not wait.
  std::thread here([] { channel(0).deliverScene(scene); });
  channel(0).dropSubscriptions();
  gate.open();
  here.join();
  drain();
  EXPECT_EQ(client.teardowns(), 1);
  EXPECT_FALSE(client.hasOverlapped());
}

TEST_F(Callbacks, MayCallEverythingBecauseNoLockIsHeld) {
  std::atomic<int> failures = 0;  // Both channels' threads add to it.
  const auto callEverything = [&failures](Client& client) {
    // From another thread too, which would wait for any lock that the platform held.
    std::thread([&] {
      Client(1).receiveEmptyHits().useChannelConfiguration().subscribe();
      std::uint32_t count = 0;
      int major = 0;
      int minor = 0;
      std::uint8_t* bytes = nullptr;
      std::size_t length = 0;
      failures += video_object_detection_subscriber_get_nbr_channels(&count);
      failures += video_object_detection_subscriber_get_nbr_channels_simultaneously(&count);
      failures += video_object_detection_subscriber_get_version(&major, &minor);
      failures += video_object_detection_subscriber_service_is_enabled() ? 0 : 1;
      failures += video_object_detection_set_channel_configuration(0, nullptr, 0, nullptr);
      failures += video_object_detection_subscriber_get_information(client.handle(), &bytes, &length, nullptr);
      std::free(bytes);
    }).join();
    failures += client.unsubscribe();
    failures += client.remove();
  };
  Client detected(0, {callEverything, {}});
  Client tornDown(1, {{}, callEverything});
  detected.subscribe();
  tornDown.subscribe();
  channel(0).pushScene(scene);
  channel(1).dropSubscriptions();
  drain();
  EXPECT_EQ(detected.received().size(), 1U);
  EXPECT_EQ(tornDown.teardowns(), 1);
  EXPECT_EQ(failures, 0);
  EXPECT_EQ(liveSubscribers(), 0);
}

}  // namespace
}  // namespace vod::host
