// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

// Several cameras fill one queue from threads of their own while several threads of the application empty it.

#include "frame-queue/frames.h"

#include <gtest/gtest.h>

#include <chrono>
#include <map>
#include <string>
#include <thread>
#include <vector>

namespace tarn::test {
namespace {

using VOD::FrameQueue;
using VOD::FrameQueuePolicy;

constexpr int cameras = 3;
constexpr std::uint64_t framesPerCamera = 2000;

/** What one reader saw. */
struct Tally {
  std::map<int, std::uint64_t> frames;
  std::map<int, std::uint64_t> last;
  int outOfOrder = 0;

  void add(const VOD::QueuedFrame& next) {
    const std::uint64_t timestamp = next.frame->timestamp;
    outOfOrder += timestamp > last[next.camera] ? 0 : 1;
    last[next.camera] = timestamp;
    ++frames[next.camera];
  }
};

void fill(const VOD::DetectionCallback& callback, int camera) {
  for (std::uint64_t timestamp = 1; timestamp <= framesPerCamera; ++timestamp) {
    callback(frameAt(timestamp), camera);
  }
}

/** Fetches in every way that there is until the queue is closed and empty. */
void empty(FrameQueue& queue, Tally& tally) {
  while (std::optional<VOD::QueuedFrame> next = queue.pop()) {
    tally.add(*next);
    if ((next = queue.tryPop())) {
      tally.add(*next);
    }
    if ((next = queue.popFor(std::chrono::microseconds(50)))) {
      tally.add(*next);
    }
  }
}

class ManyThreads : public testing::TestWithParam<FrameQueuePolicy> {};

std::string nameOf(const testing::TestParamInfo<FrameQueuePolicy>& test) {
  switch (test.param) {
    case FrameQueuePolicy::KeepLatest:
      return "KeepLatest";
    case FrameQueuePolicy::DropOldest:
      return "DropOldest";
    case FrameQueuePolicy::DropNewest:
      return "DropNewest";
  }
  return "Unknown";
}

INSTANTIATE_TEST_SUITE_P(UnderEachPolicy, ManyThreads,
                         testing::Values(FrameQueuePolicy::KeepLatest, FrameQueuePolicy::DropOldest,
                                         FrameQueuePolicy::DropNewest),
                         nameOf);

TEST_P(ManyThreads, LoseNoFrameUncountedAndKeepEachCamerasOrder) {
  FrameQueue queue{4, GetParam()};
  std::vector<Tally> tallies(2);
  std::vector<std::thread> readers;
  std::vector<std::thread> writers;
  for (Tally& tally : tallies) {
    readers.emplace_back(empty, std::ref(queue), std::ref(tally));
  }
  for (int camera = 1; camera <= cameras; ++camera) {
    writers.emplace_back(fill, queue.callback(), camera);
  }

  for (std::thread& writer : writers) {
    writer.join();
  }
  queue.close();
  for (std::thread& reader : readers) {
    reader.join();
  }

  for (const auto& [camera, counts] : queue.counts()) {
    EXPECT_EQ(counts.delivered + counts.dropped, framesPerCamera) << "camera " << camera;
    EXPECT_EQ(counts.delivered, tallies[0].frames[camera] + tallies[1].frames[camera]) << "camera " << camera;
  }
  EXPECT_EQ(queue.counts().size(), std::size_t{cameras});
  EXPECT_EQ(tallies[0].outOfOrder + tallies[1].outOfOrder, 0);
}

TEST(AQueue, MayEndWhileItsCamerasStillDeliver) {
  std::vector<std::thread> writers;
  {
    FrameQueue queue{4};
    for (int camera = 1; camera <= cameras; ++camera) {
      writers.emplace_back(fill, queue.callback(), camera);
    }
    EXPECT_NE(queue.pop(), std::nullopt);
  }

  for (std::thread& writer : writers) {
    writer.join();
  }
}

}  // namespace
}  // namespace tarn::test
