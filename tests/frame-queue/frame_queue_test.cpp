// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "frame-queue/frames.h"

#include <gtest/gtest.h>

#include <chrono>
#include <future>
#include <stdexcept>

namespace tarn::test {
namespace {

using namespace std::chrono_literals;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;
using VOD::FrameCounts;
using VOD::FrameQueue;

// Waits that end by an event would otherwise hang a broken queue's test.
constexpr auto longWait = 1min;

TEST(AnEmptyQueue, GivesNothingToWhoDoesNotWait) {
  FrameQueue queue;

  EXPECT_EQ(queue.tryPop(), std::nullopt);
  EXPECT_EQ(queue.size(), 0U);
  EXPECT_THAT(queue.counts(), IsEmpty());
}

TEST(AnEmptyQueue, GivesNothingWhenTheTimeIsOver) {
  FrameQueue queue;

  const auto start = std::chrono::steady_clock::now();
  EXPECT_EQ(queue.popFor(20ms), std::nullopt);

  EXPECT_GE(std::chrono::steady_clock::now() - start, 20ms);
}

TEST(AnEmptyQueue, DoesNotWaitForADurationOfZeroOrLess) {
  FrameQueue queue;

  EXPECT_EQ(queue.popFor(0s), std::nullopt);
  EXPECT_EQ(queue.popFor(-1s), std::nullopt);
  EXPECT_EQ(queue.popFor(std::chrono::hours::min()), std::nullopt);
}

TEST(AnEmptyQueue, WakesWhoWaitsWhenAFrameArrives) {
  FrameQueue queue;
  auto waiting = std::async(std::launch::async, [&queue] { return queue.pop(); });

  queue.callback()(frameAt(5), 3);

  const std::optional<VOD::QueuedFrame> popped = waiting.get();
  ASSERT_NE(popped, std::nullopt);
  EXPECT_EQ(popped->camera, 3);
  EXPECT_EQ(popped->frame->timestamp, 5U);
}

TEST(AnEmptyQueue, WakesWhoWaitsForTheLongestDurationThereIs) {
  FrameQueue queue;
  auto waiting = std::async(std::launch::async, [&queue] { return queue.popFor(std::chrono::hours::max()); });

  queue.callback()(frameAt(5), 3);

  EXPECT_NE(waiting.get(), std::nullopt);
}

TEST(AQueueWithFrames, GivesThemInTheOrderInWhichTheyArrived) {
  FrameQueue queue;
  const VOD::DetectionCallback callback = queue.callback();
  callback(frameAt(1), 1);
  callback(frameAt(2), 2);
  callback(frameAt(3), 1);

  EXPECT_EQ(queue.size(), 3U);
  EXPECT_EQ(queue.pop()->frame->timestamp, 1U);
  EXPECT_EQ(queue.tryPop()->frame->timestamp, 2U);
  EXPECT_EQ(queue.popFor(longWait)->frame->timestamp, 3U);
  EXPECT_EQ(queue.size(), 0U);
}

TEST(AQueueWithFrames, CountsThemWhenTheyAreFetched) {
  FrameQueue queue;
  const VOD::DetectionCallback callback = queue.callback();
  callback(frameAt(1), 1);
  callback(frameAt(2), 2);
  callback(frameAt(3), 2);
  EXPECT_THAT(queue.counts(), ElementsAre(Pair(1, FrameCounts{0, 0}), Pair(2, FrameCounts{0, 0})));

  drain(queue);

  EXPECT_THAT(queue.counts(), ElementsAre(Pair(1, FrameCounts{1, 0}), Pair(2, FrameCounts{2, 0})));
}

TEST(AQueueWithFrames, KeepsItsOrderWhenItsRoomIsUsedManyTimesOver) {
  FrameQueue queue{3};
  const VOD::DetectionCallback callback = queue.callback();

  for (std::uint64_t round = 0; round < 10; ++round) {
    callback(frameAt(2 * round), 1);
    callback(frameAt(2 * round + 1), 1);
    EXPECT_THAT(drain(queue), ElementsAre(Seen{1, 2 * round}, Seen{1, 2 * round + 1}));
  }
}

TEST(AClosedQueue, StillGivesTheFramesThatWaited) {
  FrameQueue queue;
  queue.callback()(frameAt(1), 1);

  queue.close();

  EXPECT_TRUE(queue.isClosed());
  EXPECT_NE(queue.pop(), std::nullopt);
  EXPECT_EQ(queue.pop(), std::nullopt);
  EXPECT_EQ(queue.popFor(longWait), std::nullopt);
}

TEST(AClosedQueue, DropsAndCountsWhatArrives) {
  FrameQueue queue;
  const VOD::DetectionCallback callback = queue.callback();
  queue.close();

  callback(frameAt(1), 1);

  EXPECT_EQ(queue.tryPop(), std::nullopt);
  EXPECT_THAT(queue.counts(), ElementsAre(Pair(1, FrameCounts{0, 1})));
}

TEST(AClosedQueue, CanBeClosedAgain) {
  FrameQueue queue;
  queue.close();
  queue.close();

  EXPECT_TRUE(queue.isClosed());
}

TEST(ClosingAQueue, WakesAllWhoWait) {
  FrameQueue queue;
  auto first = std::async(std::launch::async, [&queue] { return queue.pop(); });
  auto second = std::async(std::launch::async, [&queue] { return queue.pop(); });
  auto third = std::async(std::launch::async, [&queue] { return queue.popFor(longWait); });

  queue.close();

  EXPECT_EQ(first.get(), std::nullopt);
  EXPECT_EQ(second.get(), std::nullopt);
  EXPECT_EQ(third.get(), std::nullopt);
}

TEST(ACallbackThatOutlivesItsQueue, DropsItsFrames) {
  VOD::DetectionCallback callback;
  {
    FrameQueue queue;
    callback = queue.callback();
    callback(frameAt(1), 1);
  }

  callback(frameAt(2), 1);
  callback(frameAt(3), 2);
}

TEST(ACapacityOfZero, IsRefused) {
  EXPECT_THROW(FrameQueue{0}, std::invalid_argument);
}

TEST(ACapacityBeyondAllMemory, IsRefusedWhenTheQueueIsMade) {
  EXPECT_THROW(FrameQueue{SIZE_MAX}, std::length_error);
}

}  // namespace
}  // namespace tarn::test
