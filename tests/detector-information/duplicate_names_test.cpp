// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "support/detector_builder.h"

#include <gmock/gmock.h>
#include <tarnvod/detector_information.h>
#include <tarnvod/video_object_detection.pb.h>

namespace tarn::VOD {
namespace {

using test::addAttributeType;
using test::addCalibration;
using test::addClass;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;

class ClassesThatDifferInCase : public testing::Test {
 protected:
  ClassesThatDifferInCase() {
    addCalibration(addClass(message_, 1, "Car", {1}), 1, 1, 1);
    addCalibration(addClass(message_, 2, "car", {}), 2, 2, 2);
    addAttributeType(message_, 1, "Colour", {"red"});
  }

  ::VOD::DetectorInformation message_;
};

TEST_F(ClassesThatDifferInCase, KeepTheIdOfTheFirst) {
  EXPECT_THAT(DetectorInformation(message_).getClassifications().getClassIdsToNamesMap({"car"}),
              ElementsAre(Pair(1, "car")));
}

TEST_F(ClassesThatDifferInCase, KeepTheCalibrationsOfTheLast) {
  EXPECT_THAT(DetectorInformation(message_).getCalibrationsContainer(),
              ElementsAre(Pair("car", ElementsAre(Calibration{2, 2, 2}))));
}

TEST_F(ClassesThatDifferInCase, HaveAVariantEach) {
  EXPECT_THAT(DetectorInformation(message_).getObjectVariants(),
              ElementsAre(Pair("Car", ObjectSchema{{{"Colour", {"red"}}}}), Pair("car", ObjectSchema())));
}

TEST_F(ClassesThatDifferInCase, LoseTheirCalibrationsWhenTheLastHasNone) {
  addClass(message_, 3, "CAR");
  EXPECT_THAT(DetectorInformation(message_).getCalibrationsContainer(), ElementsAre(Pair("car", IsEmpty())));
}

TEST(ClassesOfOneName, KeepTheIdOfTheFirstAndTheRestOfTheLast) {
  ::VOD::DetectorInformation message;
  addCalibration(addClass(message, 1, "car", {1}), 1, 1, 1);
  addCalibration(addClass(message, 2, "car", {2}), 2, 2, 2);
  addAttributeType(message, 1, "Colour", {"red"});
  addAttributeType(message, 2, "Size", {"big"});
  const DetectorInformation information(message);
  EXPECT_THAT(information.getClassifications().getClassIdsToNamesMap({"car"}), ElementsAre(Pair(1, "car")));
  EXPECT_THAT(information.getCalibrationsContainer(), ElementsAre(Pair("car", ElementsAre(Calibration{2, 2, 2}))));
  EXPECT_THAT(information.getObjectVariants(), ElementsAre(Pair("car", ObjectSchema{{{"Size", {"big"}}}})));
}

TEST(AttributeTypesOfOneName, KeepInASchemaTheValuesOfTheOneMatchedLast) {
  ::VOD::DetectorInformation message;
  addClass(message, 1, "first last", {1, 2});
  addClass(message, 2, "last first", {2, 1});
  addAttributeType(message, 1, "Colour", {"red"});
  addAttributeType(message, 2, "Colour", {"blue"});
  const DetectorInformation information(message);
  EXPECT_THAT(information.getObjectVariants().at("first last").attributes,
              ElementsAre(Pair("Colour", ElementsAre("blue"))));
  EXPECT_THAT(information.getObjectVariants().at("last first").attributes,
              ElementsAre(Pair("Colour", ElementsAre("red"))));
}

TEST(AttributeTypesOfOneId, AreAllPartOfTheSchema) {
  ::VOD::DetectorInformation message;
  addClass(message, 1, "car", {1});
  addAttributeType(message, 1, "Colour", {"red"});
  addAttributeType(message, 1, "Size", {"big"});
  EXPECT_THAT(DetectorInformation(message).getObjectVariants().at("car").attributes,
              ElementsAre(Pair("Colour", ElementsAre("red")), Pair("Size", ElementsAre("big"))));
}

TEST(AttributeTypesOfOneName, MergeTheirValuesAmongTheSupportedAttributes) {
  ::VOD::DetectorInformation message;
  addAttributeType(message, 1, "Colour", {"red", "green"});
  addAttributeType(message, 2, "Colour", {"green", "blue", "blue"});
  EXPECT_THAT(DetectorInformation(message).getSupportedAttributes(),
              ElementsAre(Pair("Colour", ElementsAre("blue", "green", "red"))));
}

}  // namespace
}  // namespace tarn::VOD
