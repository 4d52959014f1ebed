// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "support/wire_bytes.h"

#include <gmock/gmock.h>
#include <tarnvod/video_object_detection.pb.h>

namespace {

using tarn::test::field;
using tarn::test::parse;
using tarn::test::wire;
using testing::HasSubstr;

const std::string brokenName = wire("12 04 63 61 FF 72");
const std::string germanName = wire("12 05 47 72 C3 BC 6E");

template <typename Message>
class AMessageWithAName : public testing::Test {};
using NamedMessages = testing::Types<VOD::ObjectClass, VOD::AttributeType, VOD::AttributeClass, VOD::SegmentationClass>;
struct NameOfMessage {
  template <typename Message>
  static std::string GetName(int /*index*/) {
    return std::string(Message().GetTypeName());
  }
};
TYPED_TEST_SUITE(AMessageWithAName, NamedMessages, NameOfMessage);

TYPED_TEST(AMessageWithAName, TakesUtf8) {
  TypeParam message;
  EXPECT_TRUE(parse(germanName, message));
  EXPECT_EQ(message.name(), "Gr\xC3\xBCn");
}

TYPED_TEST(AMessageWithAName, RejectsBytesThatAreNoUtf8) {
  TypeParam message;
  EXPECT_FALSE(parse(brokenName, message));
}

TYPED_TEST(AMessageWithAName, WritesBytesThatAreNoUtf8AndReportsTheField) {
  TypeParam message;
  message.set_name("ca\xFFr");
  testing::internal::CaptureStderr();
  const auto bytes = message.SerializeAsString();
  const auto report = testing::internal::GetCapturedStderr();
  EXPECT_EQ(bytes, brokenName);
  EXPECT_THAT(report, HasSubstr(std::string(message.GetTypeName()) + ".name"));
}

TEST(ANameThatIsNoUtf8, MakesTheWholeParseFail) {
  for (const auto& bytes : {field("0A", brokenName), field("12", brokenName), field("12", field("1A", brokenName)),
                            field("22", brokenName)}) {
    VOD::DetectorInformation message;
    EXPECT_FALSE(parse(bytes, message));
  }
}

}  // namespace
