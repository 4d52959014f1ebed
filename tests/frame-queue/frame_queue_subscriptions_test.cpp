// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

// The queue behind cameras that are really set up, on the host platform.

#include "frame-queue/frames.h"
#include "handler/handler_test.h"

#include <optional>

namespace tarn::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using VOD::FrameQueue;

using AQueueOfSubscribedCameras = HandlerTest;

TEST_F(AQueueOfSubscribedCameras, ReceivesTheFramesOfEach) {
  FrameQueue queue;
  ASSERT_TRUE(Handler::setup(1, queue.callback(), {"human"}));
  ASSERT_TRUE(Handler::setup(2, queue.callback(), {"car"}));

  vod::host::channel(0).deliverScene(sceneOf({1}, 10));
  vod::host::channel(1).deliverScene(sceneOf({5}, 20));

  EXPECT_THAT(drain(queue), ElementsAre(Seen{1, 10}, Seen{2, 20}));
}

TEST_F(AQueueOfSubscribedCameras, WakesTheApplicationsThread) {
  FrameQueue queue;
  ASSERT_TRUE(Handler::setup(1, queue.callback(), {"human"}));

  vod::host::channel(0).pushScene(sceneOf({1}, 10));

  const std::optional<VOD::QueuedFrame> next = queue.pop();
  ASSERT_NE(next, std::nullopt);
  EXPECT_EQ(next->frame->timestamp, 10U);
  EXPECT_EQ(next->frame->detections.at(0).className, "human");
}

TEST_F(AQueueOfSubscribedCameras, KeepsFramesThatOutliveTheirSubscription) {
  FrameQueue queue;
  ASSERT_TRUE(Handler::setup(1, queue.callback(), {"human"}));
  vod::host::channel(0).deliverScene(sceneOf({1}, 10));

  Handler::teardown(1);

  EXPECT_THAT(drain(queue), ElementsAre(Seen{1, 10}));
}

TEST_F(AQueueOfSubscribedCameras, MayEndBeforeItsSubscriptions) {
  std::optional<FrameQueue> queue(std::in_place);
  ASSERT_TRUE(Handler::setup(1, queue->callback(), {"human"}));
  queue.reset();

  vod::host::channel(0).deliverScene(sceneOf({1}));

  EXPECT_THAT(logTexts(), IsEmpty());
}

}  // namespace
}  // namespace tarn::test
