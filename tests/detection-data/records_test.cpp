// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include <gmock/gmock.h>
#include <tarnvod/detection_data.h>

#include <limits>
#include <memory>
#include <type_traits>

namespace tarn::VOD {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

template <typename Record>
constexpr bool isPlainValue =
    std::is_copy_constructible_v<Record>&& std::is_copy_assignable_v<Record>&&
        std::is_nothrow_move_constructible_v<Record>&& std::is_nothrow_move_assignable_v<Record> &&
    !std::is_polymorphic_v<Record>;

static_assert(isPlainValue<Attribute>);
static_assert(isPlainValue<Classification>);
static_assert(isPlainValue<VodEvent>);
static_assert(isPlainValue<Data>);
static_assert(isPlainValue<DetectionData>);

static_assert(static_cast<int>(EventAction::Delete) == 0);
static_assert(static_cast<int>(EventAction::Connect) == 1);
static_assert(static_cast<int>(DetectionStatus::Untracked) == 0);
static_assert(static_cast<int>(DetectionStatus::TrackedUnconfident) == 1);
static_assert(static_cast<int>(DetectionStatus::TrackedConfident) == 2);

Data aPerson() {
  return Data(0.25F, 0.5F, -0.75F, 1, 42, "human", 90, DetectionStatus::TrackedConfident,
              {Attribute("colour", "red", 80)}, {Classification("human", 90)});
}

DetectionData aFrame() {
  return DetectionData(1000, {aPerson()}, {VodEvent(EventAction::Connect, -1, {5, 3, 5})});
}

TEST(AnAttribute, HoldsItsMembers) {
  const Attribute attribute("colour", "red", 80);
  EXPECT_EQ(attribute.typeName, "colour");
  EXPECT_EQ(attribute.className, "red");
  EXPECT_EQ(attribute.score, 80U);
}

TEST(AnAttribute, MayHaveAScoreWithoutAClassAndAClassWithoutAScore) {
  const Attribute scoreOnly("colour", std::nullopt, 0);
  EXPECT_FALSE(scoreOnly.className);
  EXPECT_EQ(scoreOnly.score, 0U);
  const Attribute classOnly("colour", "", std::nullopt);
  EXPECT_EQ(classOnly.className, "");
  EXPECT_FALSE(classOnly.score);
}

TEST(AClassification, HoldsItsMembers) {
  const Classification classification("human", std::numeric_limits<std::uint32_t>::max());
  EXPECT_EQ(classification.className, "human");
  EXPECT_EQ(classification.score, std::numeric_limits<std::uint32_t>::max());
}

TEST(AnEvent, KeepsAllIdsInTheirOrder) {
  const VodEvent event(EventAction::Connect, -7, {5, 3, 5});
  EXPECT_EQ(event.action, EventAction::Connect);
  EXPECT_EQ(event.objectId, -7);
  EXPECT_THAT(event.objectIds, ElementsAre(5, 3, 5));
}

TEST(ADetectedObject, HoldsItsMembers) {
  const Data data = aPerson();
  EXPECT_EQ(data.coord1, 0.25F);
  EXPECT_EQ(data.coord2, 0.5F);
  EXPECT_EQ(data.coord3, -0.75F);
  EXPECT_EQ(data.coord4, 1);
  EXPECT_EQ(data.objectId, 42U);
  EXPECT_EQ(data.className, "human");
  EXPECT_EQ(data.score, 90U);
  EXPECT_EQ(data.status, DetectionStatus::TrackedConfident);
  EXPECT_THAT(data.attributes, ElementsAre(Attribute("colour", "red", 80)));
  EXPECT_THAT(data.classifications, ElementsAre(Classification("human", 90)));
}

TEST(ADetectedObject, CopiesTheListsItIsMadeFrom) {
  const std::vector<Attribute> attributes{Attribute("colour", "red", 80)};
  const std::vector<Classification> classifications{Classification("human", 90)};
  const Data data(0, 0, 0, 0, 1, "human", 2, DetectionStatus::Untracked, attributes, classifications);
  EXPECT_EQ(data.attributes, attributes);
  EXPECT_NE(data.attributes.data(), attributes.data());
  EXPECT_EQ(data.classifications, classifications);
}

TEST(AFrame, HoldsItsMembers) {
  const DetectionData frame = aFrame();
  EXPECT_EQ(frame.timestamp, 1000U);
  EXPECT_THAT(frame.detections, ElementsAre(aPerson()));
  EXPECT_THAT(frame.events, ElementsAre(VodEvent(EventAction::Connect, -1, {5, 3, 5})));
}

TEST(AFrame, MayBeEmpty) {
  const DetectionData frame(std::numeric_limits<std::uint64_t>::max(), {}, {});
  EXPECT_EQ(frame.timestamp, std::numeric_limits<std::uint64_t>::max());
  EXPECT_THAT(frame.detections, IsEmpty());
  EXPECT_THAT(frame.events, IsEmpty());
}

TEST(AFrame, OutlivesWhatItWasCopiedFrom) {
  auto original = std::make_unique<DetectionData>(aFrame());
  DetectionData copy(*original);
  EXPECT_EQ(copy, *original);
  original.reset();
  const DetectionData moved(std::move(copy));
  EXPECT_EQ(moved, aFrame());
}

TEST(Records, DifferWhenAnyMemberDiffers) {
  EXPECT_NE(Attribute("a", "b", 1), Attribute("x", "b", 1));
  EXPECT_NE(Attribute("a", "b", 1), Attribute("a", std::nullopt, 1));
  EXPECT_NE(Attribute("a", "b", 0), Attribute("a", "b", std::nullopt));
  EXPECT_NE(Classification("a", 1), Classification("b", 1));
  EXPECT_NE(Classification("a", 1), Classification("a", 2));
  EXPECT_NE(VodEvent(EventAction::Connect, 1, {}), VodEvent(EventAction::Delete, 1, {}));
  EXPECT_NE(VodEvent(EventAction::Connect, 1, {}), VodEvent(EventAction::Connect, 2, {}));
  EXPECT_NE(VodEvent(EventAction::Connect, 1, {1, 2}), VodEvent(EventAction::Connect, 1, {2, 1}));
  EXPECT_NE(DetectionData(1, {}, {}), DetectionData(2, {}, {}));
  EXPECT_NE(aFrame(), DetectionData(1000, {aPerson()}, {}));
  EXPECT_NE(aFrame(), DetectionData(1000, {}, aFrame().events));
}

TEST(DetectedObjects, DifferWhenAnyMemberDiffers) {
  EXPECT_EQ(aPerson(), aPerson());
  const auto changed = [](const auto& change) {
    Data data = aPerson();
    change(data);
    return data;
  };
  EXPECT_NE(aPerson(), changed([](Data& data) { data.coord1 = 9; }));
  EXPECT_NE(aPerson(), changed([](Data& data) { data.coord2 = 9; }));
  EXPECT_NE(aPerson(), changed([](Data& data) { data.coord3 = 9; }));
  EXPECT_NE(aPerson(), changed([](Data& data) { data.coord4 = 9; }));
  EXPECT_NE(aPerson(), changed([](Data& data) { data.objectId = 9; }));
  EXPECT_NE(aPerson(), changed([](Data& data) { data.className = "car"; }));
  EXPECT_NE(aPerson(), changed([](Data& data) { data.score = 9; }));
  EXPECT_NE(aPerson(), changed([](Data& data) { data.status = DetectionStatus::Untracked; }));
  EXPECT_NE(aPerson(), changed([](Data& data) { data.attributes.clear(); }));
  EXPECT_NE(aPerson(), changed([](Data& data) { data.classifications.clear(); }));
}

}  // namespace
}  // namespace tarn::VOD
