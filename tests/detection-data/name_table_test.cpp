// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "detection-data/name_table.h"

#include <gtest/gtest.h>

#include <map>
#include <string>
#include <utility>

namespace tarn::VOD {
namespace {

constexpr std::uint64_t multiplier = 0x9E3779B97F4A7C15U;  // of the table's hash

/** The number whose product with the multiplier is 1: its multiples hash to small numbers, whose upper bits are 0. */
constexpr std::uint64_t inverseOfMultiplier() {
  std::uint64_t inverse = 1;
  for (int doubling = 0; doubling < 6; ++doubling) {
    inverse *= 2 - multiplier * inverse;
  }
  return inverse;
}
static_assert(inverseOfMultiplier() * multiplier == 1);

/** Names for the multiples of a number. */
std::map<std::uint64_t, std::string> namesOf(std::uint64_t count, std::uint64_t factor) {
  std::map<std::uint64_t, std::string> names;
  for (std::uint64_t number = 1; number <= count; ++number) {
    names[number * factor] = std::to_string(number);
  }
  return names;
}

class ANameTable : public testing::TestWithParam<std::uint64_t> {};

TEST_P(ANameTable, FindsEveryNameAndNoneForOtherIds) {
  for (const std::uint64_t count : {0U, 1U, 2U, 80U, 1000U, 200000U}) {
    const NameTable<std::uint64_t> table(namesOf(count, GetParam()));
    ASSERT_EQ(table.size(), count);
    for (std::uint64_t number = 1; number <= count; ++number) {
      const std::string* const name = table.find(number * GetParam());
      ASSERT_NE(name, nullptr) << number;
      ASSERT_EQ(*name, std::to_string(number));
    }
    EXPECT_EQ(table.find(0), nullptr);
    EXPECT_EQ(table.find((count + 1) * GetParam()), nullptr);
  }
}

INSTANTIATE_TEST_SUITE_P(OfAnyIdsAlsoThoseChosenToCollide, ANameTable,
                         testing::Values(1U, 0x10001U, std::uint64_t{1} << 32U, inverseOfMultiplier(),
                                         inverseOfMultiplier() * 3));

// Were each look-up to visit the ids in a row, this would exceed the time limit of CTest.
TEST(ATableWhoseIdsTakeManySlotsInARow, FindsNoOtherIdOfTheFirstSlot) {
  constexpr std::uint64_t count = std::uint64_t{1} << 18U;
  constexpr unsigned shift = 64 - 19;  // of a table with twice as many slots
  std::map<std::uint64_t, std::string> names;
  for (std::uint64_t slot = 0; slot < count; ++slot) {
    names[(slot << shift) * inverseOfMultiplier()] = std::to_string(slot);
  }
  const NameTable<std::uint64_t> table(std::move(names));
  for (std::uint64_t number = 1; number <= count; ++number) {
    ASSERT_EQ(table.find(number * inverseOfMultiplier()), nullptr);
  }
}

TEST(ATableOfAFewCollidingIds, FindsEachOfThem) {
  for (std::uint64_t count = 1; count <= 40; ++count) {
    const NameTable<std::uint64_t> table(namesOf(count, inverseOfMultiplier()));
    for (std::uint64_t number = 1; number <= count; ++number) {
      const std::string* const name = table.find(number * inverseOfMultiplier());
      ASSERT_NE(name, nullptr) << number;
      EXPECT_EQ(*name, std::to_string(number));
    }
    EXPECT_EQ(table.find((count + 1) * inverseOfMultiplier()), nullptr);
  }
}

// A free slot holds the id 0 too.
TEST(ATableOfAFewCollidingIds, FindsIdZeroWhereItHasAName) {
  for (std::uint64_t count = 0; count <= 40; ++count) {
    auto names = namesOf(count, inverseOfMultiplier());
    EXPECT_EQ(NameTable<std::uint64_t>(std::map(names)).find(0), nullptr) << count;
    names[0] = "zero";
    const NameTable<std::uint64_t> table(std::move(names));
    ASSERT_NE(table.find(0), nullptr) << count;
    EXPECT_EQ(*table.find(0), "zero");
  }
}

}  // namespace
}  // namespace tarn::VOD
