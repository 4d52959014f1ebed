// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "rehearsal/shrinking.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <initializer_list>

using tarn::command::shrink;
using vod::schedule::Fault;
using Faults = std::vector<Fault>;

namespace {

/** Faults with the seconds from 0 on. */
Faults faultsOf(int count) {
  Faults faults(static_cast<std::size_t>(count));
  for (int i = 0; i < count; ++i) {
    faults[static_cast<std::size_t>(i)].at = std::chrono::seconds(i);
  }
  return faults;
}

bool holds(const Faults& faults, int second) {
  return std::any_of(faults.begin(), faults.end(),
                     [second](const Fault& fault) { return fault.at == std::chrono::seconds(second); });
}

}  // namespace

TEST(AFailureOfOneFault, ShrinksToIt) {
  const Faults fewest = shrink(
      faultsOf(20), [](const Faults& faults) { return holds(faults, 13); }, 100);

  ASSERT_EQ(fewest.size(), 1U);
  EXPECT_EQ(fewest[0].at, std::chrono::seconds(13));
}

TEST(AFailureOfTwoFaults, ShrinksToBothInTheirOrder) {
  const Faults fewest = shrink(
      faultsOf(20), [](const Faults& faults) { return holds(faults, 2) && holds(faults, 17); }, 100);

  ASSERT_EQ(fewest.size(), 2U);
  EXPECT_EQ(fewest[0].at, std::chrono::seconds(2));
  EXPECT_EQ(fewest[1].at, std::chrono::seconds(17));
}

TEST(AFailureWithoutFaults, ShrinksToNoneWithOneTry) {
  int tries = 0;
  const Faults fewest = shrink(
      faultsOf(20),
      [&](const Faults&) {
        ++tries;
        return true;
      },
      100);

  EXPECT_TRUE(fewest.empty());
  EXPECT_EQ(tries, 1);
}

TEST(AFailureOfAllFaults, StaysAsItIs) {
  EXPECT_EQ(shrink(
                faultsOf(7), [](const Faults& faults) { return faults.size() == 7; }, 1000)
                .size(),
            7U);
}

TEST(Shrinking, EndsWithTheBestAfterTheGivenNumberOfTries) {
  int tries = 0;
  const Faults fewest = shrink(
      faultsOf(100),
      [&](const Faults& faults) {
        ++tries;
        return holds(faults, 99);
      },
      4);

  EXPECT_EQ(tries, 4);
  EXPECT_TRUE(holds(fewest, 99));
}
