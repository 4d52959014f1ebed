// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "sample_messages.h"

#include <gmock/gmock.h>

#include <algorithm>

namespace tarn::test {
namespace {

using ::testing::ElementsAre;

TEST(ADetectorInformationMessage, IsWrittenFieldByFieldInTheOrderOfNumbers) {
  EXPECT_EQ(sample::detectorInformation().SerializeAsString(), sample::joined(sample::detectorInformationBytes()));
}

TEST(ADetectorInformationMessage, ReadsBackWhatWasWritten) {
  const auto message = parsed<VOD::DetectorInformation>(sample::joined(sample::detectorInformationBytes()));

  ASSERT_EQ(message.object_classes_size(), 1);
  const auto& objectClass = message.object_classes(0);
  EXPECT_EQ(objectClass.id(), 7U);
  EXPECT_EQ(objectClass.name(), "Person");
  ASSERT_EQ(objectClass.calibrations_size(), 1);
  EXPECT_EQ(objectClass.calibrations(0).coefficient_a(), 1);
  EXPECT_EQ(objectClass.calibrations(0).coefficient_b(), 2);
  EXPECT_EQ(objectClass.calibrations(0).coefficient_c(), 3);
  EXPECT_THAT(objectClass.attribute_type_ids(), ElementsAre(1U, 300U));

  ASSERT_EQ(message.attribute_types_size(), 1);
  EXPECT_EQ(message.attribute_types(0).id(), 1U);
  EXPECT_EQ(message.attribute_types(0).name(), "Colour");
  ASSERT_EQ(message.attribute_types(0).attribute_classes_size(), 1);
  const auto& attributeClass = message.attribute_types(0).attribute_classes(0);
  EXPECT_EQ(attributeClass.id(), 2U);
  EXPECT_EQ(attributeClass.name(), "red");
  EXPECT_EQ(attributeClass.calibrations_size(), 1);

  ASSERT_EQ(message.segmentation_classes_size(), 1);
  EXPECT_EQ(message.segmentation_classes(0).id(), 4U);
  EXPECT_EQ(message.segmentation_classes(0).name(), "road");
  EXPECT_THAT(message.segmentation_classes(0).id_list_1(), ElementsAre(1U, 2U));
  EXPECT_THAT(message.segmentation_classes(0).id_list_2(), ElementsAre(3U));
}

TEST(DetectorProperties, ReadBackWhatWasWritten) {
  const auto message = parsed<VOD::DetectorInformation>(sample::joined(sample::detectorInformationBytes()));
  ASSERT_TRUE(message.has_properties());
  const auto& properties = message.properties();
  EXPECT_EQ(properties.camera_nbr(), 1U);
  EXPECT_EQ(properties.fisheye_mounting_position(), VOD::WALL_MOUNTED);
  EXPECT_EQ(properties.image_rotation(), 180U);
  EXPECT_EQ(properties.active_roi().coord_1(), 0.5F);
  EXPECT_EQ(properties.active_roi().coord_2(), 2);
  EXPECT_EQ(properties.active_roi().coord_3(), -1);
  EXPECT_EQ(properties.active_roi().coord_4(), 1);
  EXPECT_EQ(properties.reid_status(), VOD::REID_RUNNING);
  EXPECT_EQ(properties.inference_chip(), VOD::QN17_DLPU);
}

TEST(DetectorProperties, WithCameraNumberZeroOnlyTakeNoBytes) {
  VOD::DetectorProperties properties;
  properties.set_camera_nbr(0);
  EXPECT_EQ(properties.SerializeAsString(), "");
}

TEST(DetectorProperties, KeepAChipWithoutAName) {
  VOD::DetectorProperties properties;
  ASSERT_TRUE(parse(wire("30 0C"), properties));
  EXPECT_EQ(static_cast<int>(properties.inference_chip()), 12);
  EXPECT_EQ(properties.SerializeAsString(), wire("30 0C"));
}

TEST(DetectorProperties, KeepAStatusOfReidentificationWithoutAName) {
  VOD::DetectorProperties properties;
  ASSERT_TRUE(parse(wire("28 07"), properties));
  EXPECT_EQ(properties.has_reid_status_case(), VOD::DetectorProperties::kReidStatus);
  EXPECT_EQ(static_cast<int>(properties.reid_status()), 7);
  EXPECT_EQ(properties.SerializeAsString(), wire("28 07"));
}

TEST(DetectorProperties, KeepAMountingPositionWithoutAName) {
  VOD::DetectorProperties properties;
  ASSERT_TRUE(parse(wire("10 FF FF FF FF FF FF FF FF FF 01"), properties));
  EXPECT_EQ(static_cast<int>(properties.fisheye_mounting_position()), -1);
  EXPECT_EQ(properties.SerializeAsString(), wire("10 FF FF FF FF FF FF FF FF FF 01"));
}

TEST(AnObjectClass, TakesItsAttributeTypesUnpackedAndWritesThemPacked) {
  VOD::ObjectClass objectClass;
  ASSERT_TRUE(parse(wire("20 01 20 AC 02 20 01"), objectClass));
  EXPECT_THAT(objectClass.attribute_type_ids(), ElementsAre(1U, 300U, 1U));
  EXPECT_EQ(objectClass.SerializeAsString(), wire("22 04 01 AC 02 01"));
}

TEST(ASegmentationClass, TakesItsListsUnpackedAndWritesThemPacked) {
  VOD::SegmentationClass segmentationClass;
  ASSERT_TRUE(parse(wire("18 01 20 03 18 02"), segmentationClass));
  EXPECT_EQ(segmentationClass.SerializeAsString(), wire("1A 02 01 02 22 01 03"));
}

TEST(ADetectorInformationMessage, TakesItsFieldsInAnyOrder) {
  auto fields = sample::detectorInformationBytes();
  std::reverse(fields.begin(), fields.end());
  const auto message = parsed<VOD::DetectorInformation>(sample::joined(fields));
  EXPECT_EQ(message.SerializeAsString(), sample::detectorInformation().SerializeAsString());
}

TEST(ADetectorInformationMessage, MergesItsPropertiesAndAppendsItsClasses) {
  const auto bytes = field("1A", wire("08 01 18 5A")) + field("0A", wire("08 01")) +  //
                     field("1A", wire("18 00 28 01")) + field("0A", wire("08 02"));
  const auto message = parsed<VOD::DetectorInformation>(bytes);
  EXPECT_EQ(message.properties().SerializeAsString(), wire("08 01 18 00 28 01"));
  ASSERT_EQ(message.object_classes_size(), 2);
  EXPECT_EQ(message.object_classes(0).id(), 1U);
  EXPECT_EQ(message.object_classes(1).id(), 2U);
}

TEST(AChannelConfiguration, HoldsTheRegionInFieldOne) {
  VOD::ChannelConfiguration configuration;
  sample::fill(*configuration.mutable_roi());
  EXPECT_EQ(configuration.SerializeAsString(), field("0A", sample::boxBytes));
}

TEST(AChannelConfiguration, MergesARegionThatComesInPieces) {
  const auto configuration =
      parsed<VOD::ChannelConfiguration>(field("0A", wire("0D 00 00 80 3F")) + field("0A", wire("15 00 00 00 40")));
  EXPECT_EQ(configuration.roi().coord_1(), 1);
  EXPECT_EQ(configuration.roi().coord_2(), 2);
}

TEST(ADetectorInformationMessage, WritesUnknownFieldsAfterTheKnownOnes) {
  const auto message = parsed<VOD::DetectorInformation>(wire("C0 3E 05") + field("0A", wire("08 01")));
  EXPECT_EQ(message.SerializeAsString(), field("0A", wire("08 01")) + wire("C0 3E 05"));
}

TEST(AKnownNumberWithAnotherWireType, IsAnUnknownField) {
  const auto properties = parsed<VOD::DetectorProperties>(wire("0D 01 02 03 04"));
  EXPECT_EQ(properties.camera_nbr(), 0U);
  EXPECT_EQ(properties.SerializeAsString(), wire("0D 01 02 03 04"));
}

}  // namespace
}  // namespace tarn::test
