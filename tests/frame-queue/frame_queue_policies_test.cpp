// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "frame-queue/frames.h"

#include <gtest/gtest.h>

namespace tarn::test {
namespace {

using testing::ElementsAre;
using testing::Pair;
using VOD::FrameCounts;
using VOD::FrameQueue;
using VOD::FrameQueuePolicy;

TEST(AFullQueueThatDropsTheOldest, KeepsTheFramesThatCameLast) {
  FrameQueue queue{2, FrameQueuePolicy::DropOldest};
  const VOD::DetectionCallback callback = queue.callback();
  callback(frameAt(1), 1);
  callback(frameAt(2), 2);

  callback(frameAt(3), 2);

  EXPECT_THAT(drain(queue), ElementsAre(Seen{2, 2}, Seen{2, 3}));
  EXPECT_THAT(queue.counts(), ElementsAre(Pair(1, FrameCounts{0, 1}), Pair(2, FrameCounts{2, 0})));
}

TEST(AFullQueueThatDropsTheNewest, KeepsTheFramesThatCameFirst) {
  FrameQueue queue{2, FrameQueuePolicy::DropNewest};
  const VOD::DetectionCallback callback = queue.callback();
  callback(frameAt(1), 1);
  callback(frameAt(2), 1);

  callback(frameAt(3), 2);

  EXPECT_THAT(drain(queue), ElementsAre(Seen{1, 1}, Seen{1, 2}));
  EXPECT_THAT(queue.counts(), ElementsAre(Pair(1, FrameCounts{2, 0}), Pair(2, FrameCounts{0, 1})));
}

TEST(AFullQueueThatDropsTheNewest, TakesFramesAgainWhenThereIsRoom) {
  FrameQueue queue{1, FrameQueuePolicy::DropNewest};
  const VOD::DetectionCallback callback = queue.callback();
  callback(frameAt(1), 1);
  callback(frameAt(2), 1);
  drain(queue);

  callback(frameAt(3), 1);

  EXPECT_THAT(drain(queue), ElementsAre(Seen{1, 3}));
}

TEST(AQueueThatKeepsTheLatest, HoldsOnlyTheNewestFrameOfACamera) {
  FrameQueue queue{4, FrameQueuePolicy::KeepLatest};
  const VOD::DetectionCallback callback = queue.callback();
  callback(frameAt(1), 1);
  callback(frameAt(2), 1);
  callback(frameAt(3), 1);

  EXPECT_THAT(drain(queue), ElementsAre(Seen{1, 3}));
  EXPECT_THAT(queue.counts(), ElementsAre(Pair(1, FrameCounts{1, 2})));
}

TEST(AQueueThatKeepsTheLatest, LetsABusyCameraKeepItsPlaceInTheLine) {
  FrameQueue queue{4, FrameQueuePolicy::KeepLatest};
  const VOD::DetectionCallback callback = queue.callback();
  callback(frameAt(1), 1);
  callback(frameAt(2), 2);

  callback(frameAt(3), 1);

  EXPECT_THAT(drain(queue), ElementsAre(Seen{1, 3}, Seen{2, 2}));
}

TEST(AQueueThatKeepsTheLatest, DropsTheOldestWhenThereAreMoreCamerasThanRoom) {
  FrameQueue queue{2, FrameQueuePolicy::KeepLatest};
  const VOD::DetectionCallback callback = queue.callback();
  callback(frameAt(1), 1);
  callback(frameAt(2), 2);

  callback(frameAt(3), 3);

  EXPECT_THAT(drain(queue), ElementsAre(Seen{2, 2}, Seen{3, 3}));
  EXPECT_THAT(queue.counts(),
              ElementsAre(Pair(1, FrameCounts{0, 1}), Pair(2, FrameCounts{1, 0}), Pair(3, FrameCounts{1, 0})));
}

TEST(AQueueThatKeepsTheLatest, FindsTheCameraBehindTheEndOfItsRing) {
  FrameQueue queue{2, FrameQueuePolicy::KeepLatest};
  const VOD::DetectionCallback callback = queue.callback();
  callback(frameAt(1), 1);
  callback(frameAt(2), 2);
  callback(frameAt(3), 3);  // stands where camera 1 stood

  callback(frameAt(4), 3);

  EXPECT_THAT(drain(queue), ElementsAre(Seen{2, 2}, Seen{3, 4}));
}

}  // namespace
}  // namespace tarn::test
