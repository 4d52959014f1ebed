// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "support/wire_bytes.h"

#include <google/protobuf/arena.h>
#include <gtest/gtest.h>
#include <tarnvod/video_object_detection.pb.h>

#include <memory>
#include <type_traits>

namespace {

using tarn::test::parse;
using tarn::test::parsed;
using tarn::test::wire;

template <typename Message>
const char* qualifiedName = nullptr;
template <>
const char* qualifiedName<VOD::DetectorInformation> = "VOD.DetectorInformation";
template <>
const char* qualifiedName<VOD::DetectorProperties> = "VOD.DetectorProperties";
template <>
const char* qualifiedName<VOD::ObjectClass> = "VOD.ObjectClass";
template <>
const char* qualifiedName<VOD::AttributeType> = "VOD.AttributeType";
template <>
const char* qualifiedName<VOD::AttributeClass> = "VOD.AttributeClass";
template <>
const char* qualifiedName<VOD::SegmentationClass> = "VOD.SegmentationClass";
template <>
const char* qualifiedName<VOD::Calibration> = "VOD.Calibration";
template <>
const char* qualifiedName<VOD::BoundingBox> = "VOD.BoundingBox";
template <>
const char* qualifiedName<VOD::ChannelConfiguration> = "VOD.ChannelConfiguration";
template <>
const char* qualifiedName<VOD::Scene> = "VOD.Scene";
template <>
const char* qualifiedName<VOD::Detection> = "VOD.Detection";
template <>
const char* qualifiedName<VOD::Classification> = "VOD.Classification";
template <>
const char* qualifiedName<VOD::Attribute> = "VOD.Attribute";
template <>
const char* qualifiedName<VOD::Event> = "VOD.Event";
template <>
const char* qualifiedName<VOD::Segmentation> = "VOD.Segmentation";
template <>
const char* qualifiedName<VOD::Polygon> = "VOD.Polygon";
template <>
const char* qualifiedName<VOD::Point> = "VOD.Point";

using Messages = testing::Types<VOD::DetectorInformation, VOD::DetectorProperties, VOD::ObjectClass, VOD::AttributeType,
                                VOD::AttributeClass, VOD::SegmentationClass, VOD::Calibration, VOD::BoundingBox,
                                VOD::ChannelConfiguration, VOD::Scene, VOD::Detection, VOD::Classification,
                                VOD::Attribute, VOD::Event, VOD::Segmentation, VOD::Polygon, VOD::Point>;

struct NameOfMessage {
  template <typename Message>
  static std::string GetName(int /*index*/) {
    return qualifiedName<Message>;
  }
};

/** Fields 1000 (a varint), 1001 (a string) and 1002 (four bytes), which no message knows. */
const std::string unknownFields = wire("C0 3E 05 CA 3E 02 68 69 D5 3E 01 02 03 04");

template <typename Message>
class AMessage : public testing::Test {};
TYPED_TEST_SUITE(AMessage, Messages, NameOfMessage);

TYPED_TEST(AMessage, IsALiteMessageWithItsQualifiedName) {
  static_assert(std::is_base_of_v<google::protobuf::MessageLite, TypeParam>);
  EXPECT_EQ(TypeParam().GetTypeName(), qualifiedName<TypeParam>);
}

TYPED_TEST(AMessage, TakesNoBytesWhenEmpty) {
  const TypeParam message;
  EXPECT_EQ(message.ByteSizeLong(), 0U);
  EXPECT_EQ(message.SerializeAsString(), "");
}

TYPED_TEST(AMessage, IsMadeFromNoBytes) {
  TypeParam message;
  EXPECT_TRUE(parse("", message));
  EXPECT_EQ(message.SerializeAsString(), "");
}

TYPED_TEST(AMessage, IsAlwaysInitialized) {
  EXPECT_TRUE(TypeParam().IsInitialized());
}

TYPED_TEST(AMessage, KeepsUnknownFieldsAndWritesThemBack) {
  TypeParam message;
  EXPECT_TRUE(parse(unknownFields, message));
  EXPECT_EQ(message.SerializeAsString(), unknownFields);
  EXPECT_EQ(message.ByteSizeLong(), unknownFields.size());
}

TYPED_TEST(AMessage, CopiesMergesSwapsAndClears) {
  auto message = parsed<TypeParam>(unknownFields);
  const TypeParam copy(message);
  EXPECT_EQ(copy.SerializeAsString(), unknownFields);

  TypeParam merged(copy);
  merged.MergeFrom(copy);
  EXPECT_EQ(merged.SerializeAsString(), unknownFields + unknownFields);
  merged.CopyFrom(copy);
  EXPECT_EQ(merged.SerializeAsString(), unknownFields);
  merged.CheckTypeAndMergeFrom(copy);
  EXPECT_EQ(merged.SerializeAsString(), unknownFields + unknownFields);

  message.Swap(&merged);
  EXPECT_EQ(merged.SerializeAsString(), unknownFields);
  message.Clear();
  EXPECT_EQ(message.SerializeAsString(), "");
}

TYPED_TEST(AMessage, LivesOnAnArenaOrOnTheHeap) {
  google::protobuf::Arena arena;
  auto* const onArena = static_cast<TypeParam*>(TypeParam().New(&arena));
  EXPECT_EQ(onArena->GetArena(), &arena);
  EXPECT_TRUE(parse(unknownFields, *onArena));

  const std::unique_ptr<TypeParam> onHeap(static_cast<TypeParam*>(TypeParam().New(nullptr)));
  EXPECT_EQ(onHeap->GetArena(), nullptr);
  *onHeap = *onArena;
  EXPECT_EQ(onHeap->SerializeAsString(), unknownFields);
}

TYPED_TEST(AMessage, RejectsMalformedBytes) {
  for (const auto* malformed : {"08", "08 FF FF FF FF FF FF FF FF FF FF 01", "00", "0C", "0A 05 00", "07"}) {
    TypeParam message;
    EXPECT_FALSE(parse(wire(malformed), message)) << malformed;
  }
}

}  // namespace
