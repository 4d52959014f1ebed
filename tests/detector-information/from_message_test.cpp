// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "support/detector_builder.h"

#include <gmock/gmock.h>
#include <tarnvod/detector_information.h>
#include <tarnvod/video_object_detection.pb.h>

#include <limits>

namespace tarn::VOD {
namespace {

using test::addAttributeType;
using test::addCalibration;
using test::addClass;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;

TEST(AnEmptyMessage, GivesCameraOneAndNothingElse) {
  const DetectorInformation information{::VOD::DetectorInformation()};
  EXPECT_EQ(information.getCameraNbr(), 1);
  EXPECT_EQ(information.getRotation(), 0);
  EXPECT_EQ(information.getComputeChip(), ComputeChip::CHIP_UNKNOWN);
  EXPECT_EQ(information.getReidStatus(), ReidStatus::REID_NOT_RUNNING);
  EXPECT_FALSE(information.lookupFishEyeMountingPosition());
  EXPECT_THAT(information.getCalibrationsContainer(), IsEmpty());
  EXPECT_THAT(information.getObjectVariants(), IsEmpty());
  EXPECT_THAT(information.getSupportedAttributes(), IsEmpty());
  EXPECT_TRUE(information.getClassifications().isEmpty());
}

class PropertiesOfAMessage : public testing::Test {
 protected:
  DetectorInformation converted() const { return DetectorInformation(message_); }
  ::VOD::DetectorProperties& properties() { return *message_.mutable_properties(); }

 private:
  ::VOD::DetectorInformation message_;
};

TEST_F(PropertiesOfAMessage, GiveCamerasCountedFromOne) {
  properties().set_camera_nbr(0);
  EXPECT_EQ(converted().getCameraNbr(), 1);
  properties().set_camera_nbr(3);
  EXPECT_EQ(converted().getCameraNbr(), 4);
}

TEST_F(PropertiesOfAMessage, WrapTheGreatestCameraNumberToZero) {
  properties().set_camera_nbr(std::numeric_limits<std::uint32_t>::max());
  EXPECT_EQ(converted().getCameraNbr(), 0);
  properties().set_camera_nbr(std::numeric_limits<std::int32_t>::max());
  EXPECT_EQ(converted().getCameraNbr(), std::numeric_limits<std::int32_t>::min());
}

TEST_F(PropertiesOfAMessage, GiveTheRotationUnchanged) {
  properties().set_image_rotation(7);
  EXPECT_EQ(converted().getRotation(), 7);
  properties().set_image_rotation(std::numeric_limits<std::uint32_t>::max());
  EXPECT_EQ(converted().getRotation(), -1);
}

TEST_F(PropertiesOfAMessage, GiveEachMountingPositionByItsNumber) {
  for (const auto& [wire, model] : {std::pair(::VOD::DESK_MOUNTED, FishEyeMountingPosition::DESK_MOUNTED),
                                    std::pair(::VOD::WALL_MOUNTED, FishEyeMountingPosition::WALL_MOUNTED),
                                    std::pair(::VOD::CEILING_MOUNTED, FishEyeMountingPosition::CEILING_MOUNTED)}) {
    properties().set_fisheye_mounting_position(wire);
    EXPECT_EQ(converted().lookupFishEyeMountingPosition(), model);
  }
}

TEST_F(PropertiesOfAMessage, GiveAnUnknownMountingPositionForZeroAndForNumbersWithoutAName) {
  for (const int number : {0, 4, -1}) {
    properties().set_fisheye_mounting_position(static_cast<::VOD::FisheyeMountingPosition>(number));
    EXPECT_EQ(converted().lookupFishEyeMountingPosition(), FishEyeMountingPosition::MOUNTING_UNKNOWN) << number;
  }
}

TEST_F(PropertiesOfAMessage, GiveNoMountingPositionWhenNoneWasSent) {
  properties().clear_has_fisheye_mounting_position();
  EXPECT_FALSE(converted().lookupFishEyeMountingPosition());
}

TEST_F(PropertiesOfAMessage, ReportReidentificationAsRunningForOneOnly) {
  properties().set_reid_status(::VOD::REID_RUNNING);
  EXPECT_EQ(converted().getReidStatus(), ReidStatus::REID_RUNNING);
  for (const int number : {0, 2, -1}) {
    properties().set_reid_status(static_cast<::VOD::ReIDStatus>(number));
    EXPECT_EQ(converted().getReidStatus(), ReidStatus::REID_NOT_RUNNING) << number;
  }
  properties().clear_has_reid_status();
  EXPECT_EQ(converted().getReidStatus(), ReidStatus::REID_NOT_RUNNING);
}

TEST_F(PropertiesOfAMessage, GiveEachChipByItsNumber) {
  for (const int number : {1, 2, 3, 4, 5, 6, 7, 9}) {
    properties().set_inference_chip(static_cast<::VOD::ComputeChip>(number));
    EXPECT_EQ(static_cast<int>(converted().getComputeChip()), number);
  }
}

TEST_F(PropertiesOfAMessage, GiveAnUnknownChipForEightAndForNumbersWithoutAName) {
  for (const int number : {0, 8, 10, 42, 257, -1}) {
    properties().set_inference_chip(static_cast<::VOD::ComputeChip>(number));
    EXPECT_EQ(converted().getComputeChip(), ComputeChip::CHIP_UNKNOWN) << number;
  }
  properties().clear_has_inference_chip();
  EXPECT_EQ(converted().getComputeChip(), ComputeChip::CHIP_UNKNOWN);
}

TEST(AnObjectClass, HasALowerCaseNameInTheTablesAndItsOwnInTheVariants) {
  ::VOD::DetectorInformation message;
  addClass(message, 7, "Person");
  const DetectorInformation information(message);
  EXPECT_THAT(information.getClassifications().getClassIdsToNamesMap({"person"}), ElementsAre(Pair(7, "person")));
  EXPECT_THAT(information.getCalibrationsContainer(), ElementsAre(Pair("person", IsEmpty())));
  EXPECT_THAT(information.getObjectVariants(), ElementsAre(Pair("Person", ObjectSchema())));
}

TEST(AnObjectClass, KeepsTheBytesOfItsNameThatAreNoAsciiLetters) {
  ::VOD::DetectorInformation message;
  addClass(message, 1, "GR\xC3\x9CN-1");
  EXPECT_THAT(DetectorInformation(message).getClassifications().getClassNames(), ElementsAre("gr\xC3\x9Cn-1"));
}

TEST(AnObjectClass, WithAGreatIdHasANegativeOne) {
  ::VOD::DetectorInformation message;
  addClass(message, std::numeric_limits<std::uint32_t>::max(), "car");
  EXPECT_THAT(DetectorInformation(message).getClassifications().getClassIdsToNamesMap({"car"}),
              ElementsAre(Pair(-1, "car")));
}

TEST(Calibrations, AreTakenOverByNameInTheirOrder) {
  ::VOD::DetectorInformation message;
  auto& objectClass = addClass(message, 1, "car");
  addCalibration(objectClass, 1, 2, 3);
  addCalibration(objectClass, 4, 5, 6);
  const DetectorInformation information(message);
  const auto& calibrations = information.getCalibrationsContainer().at("car");
  EXPECT_THAT(calibrations, ElementsAre(Calibration{3, 1, 2}, Calibration{6, 4, 5}));
  EXPECT_EQ(calibrations[0].coefficientA, 1);
  EXPECT_EQ(calibrations[0].coefficientB, 2);
  EXPECT_EQ(calibrations[0].coefficientC, 3);
}

TEST(ASchema, ListsTheValuesOfEachTypeOfTheClassAsSent) {
  ::VOD::DetectorInformation message;
  addClass(message, 1, "Car", {2, 1});
  addAttributeType(message, 1, "Colour", {"Red", "blue", "Red"});
  addAttributeType(message, 2, "Size", {"big"});
  addAttributeType(message, 3, "Age", {"old"});
  EXPECT_THAT(DetectorInformation(message).getObjectVariants().at("Car").attributes,
              ElementsAre(Pair("Colour", ElementsAre("Red", "blue", "Red")), Pair("Size", ElementsAre("big"))));
}

TEST(AnAttributeTypeIdThatNoTypeHas, IsIgnored) {
  ::VOD::DetectorInformation message;
  addClass(message, 1, "car", {99});
  addAttributeType(message, 1, "Colour", {"red"});
  EXPECT_THAT(DetectorInformation(message).getObjectVariants().at("car").attributes, IsEmpty());
}

TEST(AnAttributeTypeWithoutValues, IsInTheSchemaButNotAmongTheSupportedAttributes) {
  ::VOD::DetectorInformation message;
  addClass(message, 1, "car", {1});
  addAttributeType(message, 1, "Colour", {});
  const DetectorInformation information(message);
  EXPECT_THAT(information.getSupportedAttributes(), IsEmpty());
  EXPECT_THAT(information.getObjectVariants().at("car").attributes, ElementsAre(Pair("Colour", IsEmpty())));
}

TEST(SupportedAttributes, KeepTheCaseOfNamesAndNeedNoClass) {
  ::VOD::DetectorInformation message;
  addAttributeType(message, 1, "Colour", {"Red", "blue"});
  EXPECT_THAT(DetectorInformation(message).getSupportedAttributes(),
              ElementsAre(Pair("Colour", ElementsAre("Red", "blue"))));
}

TEST(SegmentationClassesAndTheActiveRegion, AreNotPartOfTheModel) {
  ::VOD::DetectorInformation message;
  message.add_segmentation_classes()->set_name("road");
  message.mutable_properties()->mutable_active_roi()->set_coord_1(1);
  EXPECT_EQ(DetectorInformation(message), DetectorInformation(::VOD::DetectorInformation()));
}

}  // namespace
}  // namespace tarn::VOD
