// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include <gmock/gmock.h>
#include <tarnvod/detector_information.h>

namespace tarn::VOD {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;

Classifications tableOf(const std::vector<std::pair<int, std::string>>& classes) {
  Classifications table;
  for (const auto& [id, name] : classes) {
    table.insertClass(id, name);
  }
  return table;
}

static_assert(noexcept(std::declval<const Classifications&>().getClassIdsToNamesMap({})));

TEST(ANewTable, IsEmpty) {
  const Classifications table;
  EXPECT_TRUE(table.isEmpty());
  EXPECT_THAT(table.getClassNames(), IsEmpty());
  EXPECT_THAT(table.getClassIdsToNamesMap({"car"}), IsEmpty());
}

TEST(ATable, IsNotEmptyOnceItHoldsAClass) {
  EXPECT_FALSE(tableOf({{0, ""}}).isEmpty());
}

TEST(ANameInsertedTwice, KeepsItsFirstId) {
  const auto table = tableOf({{1, "car"}, {3, "car"}});
  EXPECT_THAT(table.getClassIdsToNamesMap({"car"}), ElementsAre(Pair(1, "car")));
}

TEST(ATable, ListsItsNamesByteByByteInOrder) {
  const auto table = tableOf({{1, "car"}, {2, "Z"}, {3, "ca"}, {4, "\xC3\xA4"}});
  EXPECT_THAT(table.getClassNames(), ElementsAre("Z", "ca", "car", "\xC3\xA4"));
}

TEST(NamesThatShareAnId, AreStoodForByTheGreatestThatIsAskedFor) {
  const auto table = tableOf({{5, "bus"}, {5, "coach"}});
  EXPECT_THAT(table.getClassIdsToNamesMap({"bus", "coach"}), ElementsAre(Pair(5, "coach")));
  EXPECT_THAT(table.getClassIdsToNamesMap({"bus"}), ElementsAre(Pair(5, "bus")));
}

TEST(AnEmptyRequest, YieldsAnEmptyMap) {
  EXPECT_THAT(tableOf({{1, "car"}}).getClassIdsToNamesMap({}), IsEmpty());
}

TEST(UnknownNames, AreSkipped) {
  EXPECT_THAT(tableOf({{-1, "car"}}).getClassIdsToNamesMap({"boat", "car"}), ElementsAre(Pair(-1, "car")));
}

TEST(ARequestInUpperCase, MatchesNothing) {
  const auto table = tableOf({{1, "car"}});
  EXPECT_THAT(table.getClassIdsToNamesMap({"Car"}), IsEmpty());
  EXPECT_FALSE(table.areAllClassesSupported({"Car"}));
}

TEST(ARequest, IsSupportedWhenAllItsNamesAre) {
  const auto table = tableOf({{1, "car"}, {2, "human"}});
  EXPECT_TRUE(table.areAllClassesSupported({"car"}));
  EXPECT_TRUE(table.areAllClassesSupported({"car", "human"}));
  EXPECT_FALSE(table.areAllClassesSupported({"car", "boat"}));
}

TEST(AnEmptyRequest, IsAlwaysSupported) {
  EXPECT_TRUE(Classifications().areAllClassesSupported({}));
  EXPECT_TRUE(tableOf({{1, "car"}}).areAllClassesSupported({}));
}

TEST(Tables, CompareByNamesAndIds) {
  EXPECT_EQ(tableOf({{1, "car"}, {2, "human"}}), tableOf({{2, "human"}, {1, "car"}}));
  EXPECT_NE(tableOf({{1, "car"}}), tableOf({{2, "car"}}));
  EXPECT_NE(tableOf({{1, "car"}}), Classifications());
}

}  // namespace
}  // namespace tarn::VOD
