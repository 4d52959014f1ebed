// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "support/wire_bytes.h"

#include <google/protobuf/arena.h>
#include <gtest/gtest.h>
#include <tarnvod/video_object_detection.pb.h>

namespace {

using tarn::test::parsed;
using tarn::test::wire;

TEST(ARotationOfZero, IsPresentWhenItWasSent) {
  EXPECT_TRUE(parsed<VOD::DetectorProperties>(wire("18 00")).has_image_rotation());
  EXPECT_FALSE(parsed<VOD::DetectorProperties>("").has_image_rotation());
}

TEST(AZeroInAOneof, IsWrittenAndReadBackAsPresent) {
  VOD::DetectorProperties properties;
  properties.set_fisheye_mounting_position(VOD::MOUNTING_UNKNOWN);
  properties.set_image_rotation(0);
  properties.mutable_active_roi();
  properties.set_reid_status(VOD::REID_NOT_RUNNING);
  properties.set_inference_chip(VOD::CHIP_UNKNOWN);
  const auto bytes = properties.SerializeAsString();
  EXPECT_EQ(bytes, wire("10 00 18 00 22 00 28 00 30 00"));

  const auto readBack = parsed<VOD::DetectorProperties>(bytes);
  EXPECT_TRUE(readBack.has_fisheye_mounting_position());
  EXPECT_TRUE(readBack.has_image_rotation());
  EXPECT_TRUE(readBack.has_active_roi());
  EXPECT_TRUE(readBack.has_reid_status());
  EXPECT_TRUE(readBack.has_inference_chip());
}

TEST(DetectorProperties, ReadAsAbsentWhatIsCleared) {
  auto properties = parsed<VOD::DetectorProperties>(wire("10 02 18 5A 22 05 0D 00 00 80 3F 28 01 30 06"));
  properties.clear_has_fisheye_mounting_position();
  EXPECT_FALSE(properties.has_fisheye_mounting_position());
  properties.clear_has_image_rotation();
  EXPECT_FALSE(properties.has_image_rotation());
  properties.clear_has_active_roi();
  EXPECT_FALSE(properties.has_active_roi());
  properties.clear_has_reid_status();
  EXPECT_FALSE(properties.has_reid_status());
  properties.clear_has_inference_chip();
  EXPECT_FALSE(properties.has_inference_chip());
  EXPECT_EQ(properties.SerializeAsString(), "");
}

TEST(AChannelConfiguration, ReadsItsRegionAsAbsentWhenItIsCleared) {
  auto configuration = parsed<VOD::ChannelConfiguration>(wire("0A 00"));
  EXPECT_EQ(configuration.has_roi_case(), VOD::ChannelConfiguration::kRoi);
  configuration.clear_has_roi();
  EXPECT_EQ(configuration.has_roi_case(), VOD::ChannelConfiguration::HAS_ROI_NOT_SET);
}

TEST(AClassificationMessage, WritesAClassOfZero) {
  VOD::Classification classification;
  EXPECT_EQ(classification.SerializeAsString(), "");
  classification.set_class_(0);
  EXPECT_EQ(classification.SerializeAsString(), wire("08 00"));
  EXPECT_TRUE(parsed<VOD::Classification>(wire("08 00")).has_class_());
}

TEST(AClassificationMessage, ReadsAsAbsentWhatIsCleared) {
  auto classification = parsed<VOD::Classification>(wire("08 07 10 5A"));
  classification.clear_has_class();
  EXPECT_FALSE(classification.has_class_());
  EXPECT_EQ(classification.SerializeAsString(), wire("10 5A"));
  classification.clear_has_score();
  EXPECT_FALSE(classification.has_score());
  EXPECT_EQ(classification.SerializeAsString(), "");
}

TEST(AnAttributeMessage, ReadsAsAbsentWhatIsCleared) {
  auto attribute = parsed<VOD::Attribute>(wire("08 01 10 00 18 00"));
  EXPECT_TRUE(attribute.has_class_());
  EXPECT_TRUE(attribute.has_score());
  attribute.clear_has_class();
  EXPECT_FALSE(attribute.has_class_());
  attribute.clear_has_score();
  EXPECT_FALSE(attribute.has_score());
  EXPECT_EQ(attribute.SerializeAsString(), wire("08 01"));
}

VOD::BoundingBox* newBox(float coord1) {
  auto* const box = new VOD::BoundingBox;
  box->set_coord_1(coord1);
  return box;
}

TEST(ABoxThatIsGivenToAMessage, BelongsToIt) {
  VOD::ChannelConfiguration configuration;
  auto* const box = newBox(1);
  configuration.set_allocated_roi(box);
  EXPECT_EQ(&configuration.roi(), box);
  EXPECT_TRUE(configuration.has_roi());

  VOD::DetectorProperties properties;
  properties.set_allocated_active_roi(newBox(1));
  properties.set_allocated_active_roi(newBox(2));
  EXPECT_EQ(properties.active_roi().coord_1(), 2);
}

TEST(ANullBox, ClearsTheOneof) {
  VOD::ChannelConfiguration configuration;
  configuration.set_allocated_roi(newBox(1));
  configuration.set_allocated_roi(nullptr);
  EXPECT_FALSE(configuration.has_roi());

  VOD::DetectorProperties properties;
  properties.set_allocated_active_roi(newBox(1));
  properties.set_allocated_active_roi(nullptr);
  EXPECT_FALSE(properties.has_active_roi());
}

TEST(AMessageOnAnArena, TakesABoxFromTheHeap) {
  google::protobuf::Arena arena;
  auto* const configuration = static_cast<VOD::ChannelConfiguration*>(VOD::ChannelConfiguration().New(&arena));
  configuration->set_allocated_roi(newBox(1));
  EXPECT_EQ(configuration->roi().coord_1(), 1);
  configuration->clear_has_roi();
  EXPECT_FALSE(configuration->has_roi());
}

TEST(AMessageOnAnArena, TakesABoxOfTheSameArena) {
  google::protobuf::Arena arena;
  auto* const properties = static_cast<VOD::DetectorProperties*>(VOD::DetectorProperties().New(&arena));
  auto* const box = static_cast<VOD::BoundingBox*>(VOD::BoundingBox().New(&arena));
  properties->set_allocated_active_roi(box);
  EXPECT_EQ(&properties->active_roi(), box);
}

TEST(PropertiesOfADetector, ArePresentOnceTheyExist) {
  VOD::DetectorInformation information;
  EXPECT_FALSE(information.has_properties());
  information.mutable_properties();
  EXPECT_TRUE(information.has_properties());
  EXPECT_EQ(information.SerializeAsString(), wire("1A 00"));
  EXPECT_TRUE(parsed<VOD::DetectorInformation>(wire("1A 00")).has_properties());
}

}  // namespace
