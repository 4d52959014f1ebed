// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "client.h"

namespace vod::host {
namespace {

class AHandle : public HostTest {
 protected:
  /** Makes every call that takes a handle; returns how many succeeded. */
  static int successesWith(video_object_detection_subscriber_st* handle) {
    std::uint8_t* bytes = nullptr;
    std::size_t length = 0;
    const std::vector<int> results = {
        video_object_detection_subscriber_subscribe(handle),
        video_object_detection_subscriber_unsubscribe(handle),
        video_object_detection_subscriber_set_get_detection_callback(handle, nullptr),
        video_object_detection_subscriber_set_teardown_callback(handle, nullptr),
        video_object_detection_subscriber_set_receive_empty_hits(handle, true),
        video_object_detection_subscriber_use_channel_configuration(handle, true),
        video_object_detection_subscriber_get_information(handle, &bytes, &length, nullptr),
        video_object_detection_subscriber_delete(&handle)};
    return static_cast<int>(std::count(results.begin(), results.end(), 0));
  }
};

TEST_F(AHandle, IsRefusedEverywhereOnceItIsDeleted) {
  Client client(0);
  auto* const old = client.handle();
  EXPECT_EQ(client.remove(), 0);
  EXPECT_EQ(client.handle(), nullptr);
  EXPECT_EQ(successesWith(old), 0);
  EXPECT_EQ(callsWithBadHandles(), 8);
  EXPECT_THAT(journal(), testing::Contains("subscribe(#gone)"));
}

TEST_F(AHandle, IsRefusedEverywhereWhenItIsNull) {
  EXPECT_EQ(successesWith(nullptr), 0);
  EXPECT_EQ(callsWithBadHandles(), 8);
  EXPECT_THAT(journal(), testing::Contains("delete(null)"));
}

TEST_F(AHandle, IsNeverGivenOutTwice) {
  auto* const first = Client(0).handle();
  EXPECT_NE(Client(0).handle(), first);
}

TEST_F(AHandle, OfASubscriberThatIsSubscribedCannotSubscribeAgain) {
  Client client(0);
  client.subscribe();
  EXPECT_NE(client.trySubscribe(), 0);
  EXPECT_THAT(channel(0).subscriptions(), testing::ElementsAre(1));
}

TEST_F(AHandle, NeedsAPlaceToPutIt) {
  EXPECT_NE(video_object_detection_subscriber_create(nullptr, nullptr, 0), 0);
  EXPECT_NE(video_object_detection_subscriber_delete(nullptr), 0);
  EXPECT_EQ(liveSubscribers(), 0);
}

TEST_F(AHandle, IsLeftAloneByACreateThatFails) {
  auto* handle = Client(0).handle();
  auto* const before = handle;
  EXPECT_NE(video_object_detection_subscriber_create(&handle, nullptr, 99), 0);
  EXPECT_EQ(handle, before);
}

class AnAnswer : public HostTest {};

TEST_F(AnAnswer, NeedsAPlaceToPutIt) {
  int number = 0;
  EXPECT_NE(video_object_detection_subscriber_get_nbr_channels(nullptr), 0);
  EXPECT_NE(video_object_detection_subscriber_get_nbr_channels_simultaneously(nullptr), 0);
  EXPECT_NE(video_object_detection_subscriber_get_version(nullptr, &number), 0);
  EXPECT_NE(video_object_detection_subscriber_get_version(&number, nullptr), 0);
}

}  // namespace
}  // namespace vod::host
