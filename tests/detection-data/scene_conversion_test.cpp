// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "detection-data/scene_conversion.h"

#include "support/scene_builder.h"

#include <gtest/gtest.h>
#include <tarnvod/video_object_detection.pb.h>

#include <map>
#include <memory>
#include <string>
#include <vector>

namespace tarn::VOD {
namespace {

constexpr std::uint32_t known = 1;
constexpr std::uint32_t unknown = 2;

std::vector<std::uint32_t> missingTypes;

std::shared_ptr<const AttributeNames> attributeNames(std::map<std::uint32_t, std::string> types,
                                                     std::map<AttributeClassId, AttributeValueName> values = {}) {
  return std::make_shared<const AttributeNames>(std::move(types), std::move(values));
}

/** Scenes of which the library knows one class and one attribute type without values. */
class AScene : public testing::Test {
 protected:
  AScene() { missingTypes.clear(); }

  std::unique_ptr<DetectionData> converted() const {
    SceneNames names;
    names.classes = std::make_shared<const ClassNames>(std::map<std::int32_t, std::string>{{known, "human"}});
    names.attributes = attributes_;
    return convertScene(scene_, names, [](std::uint32_t type) { missingTypes.push_back(type); });
  }

  ::VOD::Detection& addDetection(std::uint32_t classId) { return test::addDetection(scene_, classId); }

  void addAttribute(std::uint32_t type, std::uint32_t value) {
    ::VOD::Attribute& attribute = *scene_.mutable_detections(0)->add_attributes();
    attribute.set_type(type);
    attribute.set_class_(value);
  }

  ::VOD::Scene scene_;
  std::shared_ptr<const AttributeNames> attributes_ = attributeNames({{known, "colour"}});
};

TEST_F(AScene, OfWhichOneDetectionIsDeliveredLeavesNoRoomForTheOthers) {
  addDetection(unknown);
  addDetection(known);
  for (int i = 2; i < 1000; ++i) {
    addDetection(unknown);
  }
  const auto record = converted();
  EXPECT_EQ(record->detections.size(), 1U);
  EXPECT_EQ(record->detections.capacity(), 1U);
}

TEST_F(AScene, OfWhichNoDetectionIsDeliveredLeavesNoRoom) {
  addDetection(unknown);
  EXPECT_EQ(converted()->detections.capacity(), 0U);
}

TEST_F(AScene, LeavesNoRoomForWhatIsDroppedOfADetection) {
  ::VOD::Detection& detection = addDetection(known);
  for (const std::uint32_t id : {known, unknown, unknown, known, unknown}) {
    detection.add_attributes()->set_type(id);
    test::addClassification(detection, id, 1);
  }
  const auto record = converted();
  EXPECT_EQ(record->detections[0].attributes.size(), 2U);
  EXPECT_EQ(record->detections[0].attributes.capacity(), 2U);
  EXPECT_EQ(record->detections[0].classifications.size(), 2U);
  EXPECT_EQ(record->detections[0].classifications.capacity(), 2U);
}

TEST_F(AScene, LeavesNoRoomForEventsOfAnUnknownAction) {
  for (const int action : {2, 1, -1, 0, 2}) {
    scene_.add_events()->set_action(static_cast<::VOD::EventAction>(action));
  }
  const auto record = converted();
  EXPECT_EQ(record->events.size(), 2U);
  EXPECT_EQ(record->events.capacity(), 2U);
}

TEST_F(AScene, WithManyDetectionsAttributesAndClassificationsKeepsTheirOrder) {
  constexpr std::uint32_t many = 50;
  for (std::uint32_t i = 0; i < many; ++i) {
    ::VOD::Detection& detection = addDetection(i % 3 == 0 ? unknown : known);
    detection.set_object_id(i);
    ::VOD::Attribute& attribute = *scene_.mutable_detections(1 < scene_.detections_size() ? 1 : 0)->add_attributes();
    attribute.set_type(i % 2 == 0 ? unknown : known);
    attribute.set_score(i);
  }
  const auto record = converted();
  std::vector<std::uint32_t> objects;
  for (const Data& data : record->detections) {
    objects.push_back(data.objectId);
  }
  std::vector<std::uint32_t> expectedObjects;
  std::vector<std::uint32_t> expectedScores;
  for (std::uint32_t i = 0; i < many; ++i) {
    if (i % 3 != 0) {
      expectedObjects.push_back(i);
    }
    if (i % 2 != 0) {
      expectedScores.push_back(i);
    }
  }
  std::vector<std::uint32_t> scores;
  for (const Attribute& attribute : record->detections[0].attributes) {
    scores.push_back(attribute.score.value());
  }
  EXPECT_EQ(objects, expectedObjects);
  EXPECT_EQ(scores, expectedScores);
}

TEST_F(AScene, ReportsEachAttributeOfAnUnknownTypeOnce) {
  ::VOD::Detection& detection = addDetection(known);
  constexpr std::size_t many = 40;
  for (std::size_t i = 0; i < many; ++i) {
    detection.add_attributes()->set_type(unknown);
  }
  EXPECT_TRUE(converted()->detections[0].attributes.empty());
  EXPECT_EQ(missingTypes, std::vector<std::uint32_t>(many, unknown));
}

TEST_F(AScene, GivesAnAttributeTheNamesOfItsTypeAndOfItsValue) {
  attributes_ =
      attributeNames({{known, "colour"}, {3, "hat"}}, {{{known, 5}, {"red"}}, {{known, 0}, {""}}, {{3, 5}, {"none"}}});
  addDetection(known);
  addAttribute(known, 5);
  addAttribute(3, 5);
  addAttribute(known, 0);
  EXPECT_EQ(converted()->detections[0].attributes,
            (std::vector<Attribute>{
                {"colour", "red", std::nullopt}, {"hat", "none", std::nullopt}, {"colour", "", std::nullopt}}));
}

TEST_F(AScene, KeepsTheTypeOfAnAttributeWhoseValueHasNoName) {
  attributes_ = attributeNames({{known, "colour"}, {3, "hat"}}, {{{known, 5}, {"red"}}});
  addDetection(known);
  addAttribute(known, 6);
  addAttribute(3, 5);
  EXPECT_EQ(converted()->detections[0].attributes,
            (std::vector<Attribute>{{"colour", std::nullopt, std::nullopt}, {"hat", std::nullopt, std::nullopt}}));
  EXPECT_TRUE(missingTypes.empty());
}

TEST_F(AScene, ReportsAnAttributeOfAnUnknownTypeAlsoWhenItsValueHasAName) {
  attributes_ = attributeNames({{known, "colour"}}, {{{unknown, 5}, {"red"}}});
  addDetection(known);
  addAttribute(unknown, 5);
  EXPECT_TRUE(converted()->detections[0].attributes.empty());
  EXPECT_EQ(missingTypes, std::vector<std::uint32_t>{unknown});
}

TEST_F(AScene, ReportsEachAttributeWhenThereAreNoNames) {
  attributes_ = nullptr;
  addDetection(known);
  addAttribute(known, 5);
  scene_.mutable_detections(0)->add_attributes()->set_type(known);
  EXPECT_TRUE(converted()->detections[0].attributes.empty());
  EXPECT_EQ(missingTypes, (std::vector<std::uint32_t>{known, known}));
}

TEST(ASceneWithoutNamesOfClasses, HasNoDetections) {
  ::VOD::Scene scene;
  test::addDetection(scene, known);
  EXPECT_TRUE(convertScene(scene, SceneNames(), [](std::uint32_t) {})->detections.empty());
}

/** Ids of 0 are not written, so these are the smallest messages that become records with a name. */
TEST(AFrameOfTheSmallestMessages, HoldsANameForEveryTwoBytes) {
  SceneNames names;
  names.classes = std::make_shared<const ClassNames>(std::map<std::int32_t, std::string>{{0, "human"}});
  names.attributes = attributeNames({{0, "colour"}});
  constexpr std::size_t many = 100;
  ::VOD::Scene scene;
  for (std::size_t i = 0; i < many; ++i) {
    scene.add_detections();
  }
  for (std::size_t i = 0; i < many; ++i) {
    scene.mutable_detections(0)->add_attributes();
  }
  constexpr std::size_t lengthOfTheFirst = 2;  // as it is longer than 127 bytes
  const auto record = convertScene(scene, names, [](std::uint32_t /*type*/) {});
  EXPECT_EQ(record->detections.size() + record->detections[0].attributes.size(), 2 * many);
  EXPECT_EQ(scene.ByteSizeLong(), 2 * (2 * many) + lengthOfTheFirst - 1);
}

#ifdef __x86_64__
TEST(ARecord, TakesAtMostFiftySixBytesForEachByteOfItsFrame) {
  EXPECT_LE(sizeof(Data), 2 * 56);
  EXPECT_LE(sizeof(Attribute), 2 * 56);
  EXPECT_LE(sizeof(VodEvent), 2 * 56);
  EXPECT_LE(sizeof(Classification), 6 * 56);
}
#endif

}  // namespace
}  // namespace tarn::VOD
