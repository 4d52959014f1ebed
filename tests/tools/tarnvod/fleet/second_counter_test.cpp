// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "fleet/second_counter.h"

#include <gtest/gtest.h>
#include <tools/tarnvod/schema_check.h>

#include <cstdint>
#include <initializer_list>

using namespace tarn::command;
using namespace tarn::VOD;

namespace {

constexpr std::int64_t second = 1'000'000;

DetectionData withHumans(std::initializer_list<unsigned int> ids, std::uint64_t timestamp = 0) {
  DetectionData frame{timestamp, {}, {}};
  for (const unsigned int id : ids) {
    frame.detections.push_back({0, 0, 0, 0, id, "human", 80, DetectionStatus::TrackedConfident, {}, {}});
  }
  return frame;
}

TEST(ASecond, IsCountedWhenTheNextOneBegins) {
  SecondCounter counter;
  EXPECT_FALSE(counter.add(withHumans({7, 8}), 5 * second, false));
  EXPECT_FALSE(counter.add(withHumans({8, 9, 10}, 77), 6 * second - 1, true));

  const auto counts = counter.add(withHumans({1}), 6 * second, true);

  ASSERT_TRUE(counts);
  EXPECT_EQ(counts->second, 5);
  EXPECT_EQ(counts->frames, 2U);
  EXPECT_EQ(counts->timestamp, 77U);
  EXPECT_EQ(counts->arrival, 6 * second - 1);
  EXPECT_TRUE(counts->clockSet);
  ASSERT_EQ(counts->classes.size(), 1U);
  EXPECT_EQ(counts->classes.at("human").objects, 4U);
  EXPECT_EQ(counts->classes.at("human").most, 3U);
}

TEST(ASecond, ThatIsOverIsCountedWithoutAnotherFrame) {
  SecondCounter counter;
  counter.add(withHumans({7}), 5 * second, true);

  EXPECT_FALSE(counter.takeBefore(6 * second - 1));
  EXPECT_TRUE(counter.takeBefore(6 * second));
  EXPECT_FALSE(counter.takeBefore(7 * second));
}

TEST(ASecond, BeginsWithoutTheObjectsOfTheOneBefore) {
  SecondCounter counter;
  counter.add(withHumans({7, 8}), 5 * second, true);
  counter.add(withHumans({7}), 6 * second, true);

  const auto counts = counter.takeAll();

  ASSERT_TRUE(counts);
  EXPECT_EQ(counts->classes.at("human").objects, 1U);
  EXPECT_EQ(counts->classes.at("human").most, 1U);
}

TEST(ASecond, WithoutObjectsHasItsFrames) {
  SecondCounter counter;
  counter.add(withHumans({}), 5 * second, true);

  const auto counts = counter.takeAll();

  ASSERT_TRUE(counts);
  EXPECT_EQ(counts->frames, 1U);
  EXPECT_TRUE(counts->classes.empty());
}

TEST(ASecond, WithoutFramesIsNotCounted) {
  SecondCounter counter;

  EXPECT_FALSE(counter.takeAll());
}

TEST(ASecondAfterTheClockWasSetBack, IsAnotherSecond) {
  SecondCounter counter;
  counter.add(withHumans({7}), 5 * second, true);

  const auto counts = counter.add(withHumans({7}), 2 * second, true);

  ASSERT_TRUE(counts);
  EXPECT_EQ(counts->second, 5);
}

TEST(AMessageOfCounts, MatchesItsSchema) {
  SecondCounter counter;
  counter.add(withHumans({7, 8}), 5 * second, true);

  const std::string message =
      countsJson(counter.takeAll().value(), {"north", "gate", "0123456789abcdef"}, {1, 3, 5 * second, true});

  EXPECT_TRUE(test::matchSchemas(message + '\n'));
}

}  // namespace
