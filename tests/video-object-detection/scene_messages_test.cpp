// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "sample_messages.h"

#include <gmock/gmock.h>

#include <limits>

namespace tarn::test {
namespace {

using ::testing::ElementsAre;

TEST(ASceneMessage, IsWrittenFieldByFieldInTheOrderOfNumbers) {
  EXPECT_EQ(sample::scene().SerializeAsString(), sample::joined(sample::sceneBytes()));
}

TEST(ASceneMessage, ReadsBackWhatWasWritten) {
  const auto scene = parsed<VOD::Scene>(sample::joined(sample::sceneBytes()));
  EXPECT_EQ(scene.timestamp(), 1'000'000U);
  ASSERT_EQ(scene.events_size(), 1);
  EXPECT_EQ(scene.events(0).action(), VOD::EVENT_CONNECT);
  EXPECT_EQ(scene.events(0).object_id(), -1);
  EXPECT_THAT(scene.events(0).object_ids(), ElementsAre(5, 3, 5));

  ASSERT_EQ(scene.segmentations_size(), 1);
  EXPECT_EQ(scene.segmentations(0).segmentation_class_id(), 4U);
  ASSERT_EQ(scene.segmentations(0).polygons_size(), 1);
  const auto& polygon = scene.segmentations(0).polygons(0);
  ASSERT_EQ(polygon.points_size(), 2);
  EXPECT_EQ(polygon.points(0).x(), 1);
  EXPECT_EQ(polygon.points(0).y(), 2);
  EXPECT_EQ(polygon.points(1).x(), 3);
  EXPECT_EQ(polygon.points(1).y(), 0);
}

TEST(ADetectionMessage, ReadsBackWhatWasWritten) {
  const auto scene = parsed<VOD::Scene>(sample::joined(sample::sceneBytes()));
  ASSERT_EQ(scene.detections_size(), 1);
  const auto& detection = scene.detections(0);
  EXPECT_EQ(detection.coord_1(), 0.5F);
  EXPECT_EQ(detection.coord_2(), 2);
  EXPECT_EQ(detection.coord_3(), -1);
  EXPECT_EQ(detection.coord_4(), 1);
  EXPECT_EQ(detection.object_id(), 300U);
  EXPECT_EQ(detection.class_id(), 7U);
  EXPECT_EQ(detection.score(), 90U);
  EXPECT_EQ(detection.status(), VOD::Detection::TRACKED_CONFIDENT);
  ASSERT_EQ(detection.attributes_size(), 1);
  EXPECT_EQ(detection.attributes(0).type(), 1U);
  EXPECT_EQ(detection.attributes(0).class_(), 0U);
  EXPECT_EQ(detection.attributes(0).score(), 80U);
  ASSERT_EQ(detection.classifications_size(), 1);
  EXPECT_EQ(detection.classifications(0).class_(), 7U);
  EXPECT_EQ(detection.classifications(0).score(), 0U);
}

TEST(AnEmptyBuffer, IsASceneWithNothingInIt) {
  VOD::Scene scene;
  EXPECT_TRUE(parse("", scene));
  EXPECT_EQ(scene.timestamp(), 0U);
  EXPECT_EQ(scene.detections_size(), 0);
  EXPECT_EQ(scene.events_size(), 0);
  EXPECT_EQ(scene.segmentations_size(), 0);
}

TEST(ASceneMessage, CarriesEveryTimestamp) {
  VOD::Scene scene;
  scene.set_timestamp(std::numeric_limits<std::uint64_t>::max());
  const auto bytes = wire("08 FF FF FF FF FF FF FF FF FF 01");
  EXPECT_EQ(scene.SerializeAsString(), bytes);
  EXPECT_EQ(parsed<VOD::Scene>(bytes).timestamp(), std::numeric_limits<std::uint64_t>::max());
}

TEST(ADetectionOfZeros, WritesItsStatusAndListsOnly) {
  VOD::Detection detection;
  sample::fill(detection);
  detection.set_coord_1(0);
  detection.set_coord_2(0);
  detection.set_coord_3(0);
  detection.set_coord_4(0);
  detection.set_object_id(0);
  detection.set_class_id(0);
  detection.set_score(0);
  EXPECT_EQ(detection.SerializeAsString(), wire("40 02 4A 06 08 01 10 00 18 50 5A 04 08 07 10 00"));
}

TEST(ADetectionMessage, WritesFieldTenBackAfterItsKnownFields) {
  const auto detection = parsed<VOD::Detection>(wire("52 02 68 69 5A 02 08 07 28 01"));
  EXPECT_EQ(detection.object_id(), 1U);
  EXPECT_EQ(detection.SerializeAsString(), wire("28 01 5A 02 08 07 52 02 68 69"));
}

TEST(ADetectionMessage, KeepsAStatusWithoutAName) {
  const auto detection = parsed<VOD::Detection>(wire("40 07"));
  EXPECT_EQ(static_cast<int>(detection.status()), 7);
  EXPECT_EQ(detection.SerializeAsString(), wire("40 07"));
}

TEST(AnEventMessage, WritesANegativeIdInElevenBytes) {
  VOD::Event event;
  event.set_object_id(-1);
  EXPECT_EQ(event.SerializeAsString(), wire("10 FF FF FF FF FF FF FF FF FF 01"));
  EXPECT_EQ(parsed<VOD::Event>(event.SerializeAsString()).object_id(), -1);
}

TEST(AnEventMessage, WithoutAnActionIsADelete) {
  EXPECT_EQ(parsed<VOD::Event>(wire("10 05")).action(), VOD::EVENT_DELETE);
}

TEST(AnEventMessage, KeepsAnActionWithoutAName) {
  const auto event = parsed<VOD::Event>(wire("08 2A"));
  EXPECT_EQ(static_cast<int>(event.action()), 42);
  EXPECT_EQ(event.SerializeAsString(), wire("08 2A"));
}

TEST(AnEventMessage, TakesItsIdsUnpackedAndWritesThemPacked) {
  const auto event = parsed<VOD::Event>(wire("18 05 18 03 18 05"));
  EXPECT_THAT(event.object_ids(), ElementsAre(5, 3, 5));
  EXPECT_EQ(event.SerializeAsString(), wire("1A 03 05 03 05"));
}

TEST(AnEventMessage, WritesNegativeIdsInItsList) {
  VOD::Event event;
  event.add_object_ids(-2);
  const auto bytes = wire("1A 0A FE FF FF FF FF FF FF FF FF 01");
  EXPECT_EQ(event.SerializeAsString(), bytes);
  EXPECT_THAT(parsed<VOD::Event>(bytes).object_ids(), ElementsAre(-2));
}

TEST(ASceneMessage, RejectsMalformedBytesInTheMiddleOfADetection) {
  VOD::Scene scene;
  EXPECT_FALSE(parse(wire("08 05") + field("12", wire("28 01 30")), scene));
  EXPECT_EQ(scene.timestamp(), 5U) << "what stands before the damage stays";
}

}  // namespace
}  // namespace tarn::test
