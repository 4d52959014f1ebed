// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "frame-queue/frames.h"
#include "support/allocation_failure.h"

#include <gtest/gtest.h>

#include <utility>

namespace tarn::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using VOD::FrameQueue;
using VOD::FrameQueuePolicy;

TEST(AFrameOfAKnownCamera, NeedsNoMemoryToWait) {
  FrameQueue queue{2, FrameQueuePolicy::DropOldest};
  const VOD::DetectionCallback callback = queue.callback();
  callback(frameAt(1), 1);
  auto second = frameAt(2);
  auto third = frameAt(3);

  std::size_t allocations = 0;
  {
    const AllocationFailure counter(AllocationFailure::none);
    callback(std::move(second), 1);
    callback(std::move(third), 1);
    allocations = counter.count();
  }

  EXPECT_EQ(allocations, 0U);
  EXPECT_THAT(drain(queue), ElementsAre(Seen{1, 2}, Seen{1, 3}));
}

TEST(AFrameOfANewCamera, IsDroppedWithoutAnExceptionWhenMemoryRunsOut) {
  FrameQueue queue;
  const VOD::DetectionCallback callback = queue.callback();
  auto first = frameAt(1);

  bool happened = false;
  {
    const AllocationFailure failure(1);
    callback(std::move(first), 1);
    happened = failure.happened();
  }

  EXPECT_TRUE(happened);
  EXPECT_EQ(queue.size(), 0U);
  EXPECT_THAT(queue.counts(), IsEmpty());
  callback(frameAt(2), 1);
  EXPECT_THAT(drain(queue), ElementsAre(Seen{1, 2}));
}

}  // namespace
}  // namespace tarn::test
