// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "cameras/bounded_queue.h"

#include "records/record_size.h"

#include <gtest/gtest.h>
#include <tarnvod/detection_data.h>

#include <chrono>
#include <optional>
#include <string>

using namespace tarn::command;
using namespace tarn::VOD;

namespace {

constexpr std::chrono::milliseconds atOnce{0};

TEST(AFullQueue, DropsAndCountsAfterOneWait) {
  BoundedQueue<int> queue({1, 1000});
  for (int value = 0; value < 1000; ++value) {
    queue.push(value, 1);
  }

  EXPECT_EQ(queue.dropped(), 999U);
  EXPECT_EQ(queue.popWithin(atOnce), 0);
  EXPECT_EQ(queue.popWithin(atOnce), std::nullopt);
}

TEST(AFullQueue, TakesValuesAgainOnceThereIsRoom) {
  BoundedQueue<int> queue({1, 1000});
  queue.push(1, 1);
  queue.push(2, 1);
  queue.popWithin(atOnce);

  queue.push(3, 1);

  EXPECT_EQ(queue.popWithin(atOnce), 3);
}

TEST(AFullQueue, HoldsNoMoreBytesThanItHasRoomFor) {
  BoundedQueue<int> queue({1000, 100});
  queue.push(1, 60);
  queue.push(2, 60);
  queue.push(3, 40);

  EXPECT_EQ(queue.dropped(), 1U);
  EXPECT_EQ(queue.popWithin(atOnce), 1);
  queue.push(4, 60);
  EXPECT_EQ(queue.popWithin(atOnce), 3);
  EXPECT_EQ(queue.popWithin(atOnce), 4);
}

TEST(AnEmptyQueue, TakesAValueThatIsLargerThanItsRoom) {
  BoundedQueue<int> queue({1000, 100});
  queue.push(1, 5000);
  queue.push(2, 1);

  EXPECT_EQ(queue.dropped(), 1U);
  EXPECT_EQ(queue.popWithin(atOnce), 1);
  queue.push(3, 100);
  EXPECT_EQ(queue.popWithin(atOnce), 3);
}

TEST(TheSizeOfARecord, CountsItsListsAndAllItsNames) {
  const std::string name(1000, 'n');
  const DetectionData empty(0, {}, {});
  const Data human(0, 0, 0, 0, 7, name, 80, DetectionStatus::Untracked,
                   {{name, name, 1}, {name, std::nullopt, std::nullopt}}, {{name, std::nullopt}});
  const DetectionData frame(0, {human}, {VodEvent(EventAction::Connect, 7, {1, 2, 3})});

  EXPECT_EQ(sizeOf(empty), sizeof empty);
  EXPECT_EQ(sizeOf(frame), sizeof frame + sizeof human + 2 * sizeof(Attribute) + sizeof(Classification) +
                               sizeof(VodEvent) + 3 * sizeof(int) + 5 * name.size());
}

}  // namespace
