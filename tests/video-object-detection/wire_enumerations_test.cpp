// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include <gtest/gtest.h>
#include <tarnvod/video_object_detection.pb.h>

#include <cctype>
#include <string>
#include <string_view>
#include <vector>

namespace {

/** An enumeration with its generated functions, and its names in the order of their numbers. */
struct ComputeChip {
  static constexpr const char* typeName = "ComputeChip";
  using Type = VOD::ComputeChip;
  static bool isValid(int number) { return VOD::ComputeChip_IsValid(number); }
  static std::string name(Type value) { return std::string(VOD::ComputeChip_Name(value)); }
  static bool parse(const std::string& name, Type* value) { return VOD::ComputeChip_Parse(name, value); }
  static std::vector<std::string> names() {
    return {"CHIP_UNKNOWN", "CPU",           "TOVREK_6_FD",   "TOVREK_7_GPU", "TOVREK_7_TPU",
            "TOVREK_7_OD",  "TOVREK_8_DLPU", "TOVREK_9_DLPU", "RX4420_DLPU",  "QN17_DLPU"};
  }
};

struct ReIDStatus {
  static constexpr const char* typeName = "ReIDStatus";
  using Type = VOD::ReIDStatus;
  static bool isValid(int number) { return VOD::ReIDStatus_IsValid(number); }
  static std::string name(Type value) { return std::string(VOD::ReIDStatus_Name(value)); }
  static bool parse(const std::string& name, Type* value) { return VOD::ReIDStatus_Parse(name, value); }
  static std::vector<std::string> names() { return {"REID_NOT_RUNNING", "REID_RUNNING"}; }
};

struct FisheyeMountingPosition {
  static constexpr const char* typeName = "FisheyeMountingPosition";
  using Type = VOD::FisheyeMountingPosition;
  static bool isValid(int number) { return VOD::FisheyeMountingPosition_IsValid(number); }
  static std::string name(Type value) { return std::string(VOD::FisheyeMountingPosition_Name(value)); }
  static bool parse(const std::string& name, Type* value) { return VOD::FisheyeMountingPosition_Parse(name, value); }
  static std::vector<std::string> names() {
    return {"MOUNTING_UNKNOWN", "DESK_MOUNTED", "WALL_MOUNTED", "CEILING_MOUNTED"};
  }
};

struct DetectionStatus {
  static constexpr const char* typeName = "DetectionStatus";
  using Type = VOD::Detection_DetectionStatus;
  static bool isValid(int number) { return VOD::Detection_DetectionStatus_IsValid(number); }
  static std::string name(Type value) { return std::string(VOD::Detection_DetectionStatus_Name(value)); }
  static bool parse(const std::string& name, Type* value) { return VOD::Detection_DetectionStatus_Parse(name, value); }
  static std::vector<std::string> names() { return {"UNTRACKED", "TRACKED_UNCONFIDENT", "TRACKED_CONFIDENT"}; }
};

struct EventAction {
  static constexpr const char* typeName = "EventAction";
  using Type = VOD::EventAction;
  static bool isValid(int number) { return VOD::EventAction_IsValid(number); }
  static std::string name(Type value) { return std::string(VOD::EventAction_Name(value)); }
  static bool parse(const std::string& name, Type* value) { return VOD::EventAction_Parse(name, value); }
  static std::vector<std::string> names() { return {"EVENT_DELETE", "EVENT_CONNECT"}; }
};

template <typename Enumeration>
class AWireEnumeration : public testing::Test {};
using Enumerations = testing::Types<ComputeChip, ReIDStatus, FisheyeMountingPosition, DetectionStatus, EventAction>;
struct NameOfEnumeration {
  template <typename Enumeration>
  static std::string GetName(int /*index*/) {
    return Enumeration::typeName;
  }
};
TYPED_TEST_SUITE(AWireEnumeration, Enumerations, NameOfEnumeration);

TYPED_TEST(AWireEnumeration, NamesItsNumbersFromZeroWithoutGaps) {
  const auto names = TypeParam::names();
  for (std::size_t number = 0; number < names.size(); ++number) {
    EXPECT_EQ(TypeParam::name(static_cast<typename TypeParam::Type>(number)), names[number]);
    EXPECT_TRUE(TypeParam::isValid(static_cast<int>(number)));
  }
}

TYPED_TEST(AWireEnumeration, HasNoNameForOtherNumbers) {
  const auto end = static_cast<int>(TypeParam::names().size());
  for (const int number : {-1, end, end + 2, 1000}) {
    EXPECT_FALSE(TypeParam::isValid(number)) << number;
    EXPECT_EQ(TypeParam::name(static_cast<typename TypeParam::Type>(number)), "") << number;
  }
}

TYPED_TEST(AWireEnumeration, ParsesEachOfItsNames) {
  const auto names = TypeParam::names();
  for (std::size_t number = 0; number < names.size(); ++number) {
    typename TypeParam::Type value{};
    EXPECT_TRUE(TypeParam::parse(names[number], &value)) << names[number];
    EXPECT_EQ(static_cast<std::size_t>(value), number);
  }
}

TYPED_TEST(AWireEnumeration, ParsesNothingElse) {
  const auto name = TypeParam::names().front();
  std::string lowerCase = name;
  for (auto& character : lowerCase) {
    character = static_cast<char>(std::tolower(static_cast<unsigned char>(character)));
  }
  for (const auto& wrong : {std::string(), lowerCase, name + " ", name.substr(1), std::string("NO_SUCH_NAME")}) {
    typename TypeParam::Type value{};
    EXPECT_FALSE(TypeParam::parse(wrong, &value)) << '"' << wrong << '"';
  }
}

TEST(AnEnumerationName, ParsesAsALiteralAndAsAString) {
  VOD::ComputeChip chip{};
  EXPECT_TRUE(VOD::ComputeChip_Parse("CPU", &chip));
  EXPECT_EQ(chip, VOD::CPU);
  constexpr std::string_view view = "QN17_DLPU";
  EXPECT_TRUE(VOD::ComputeChip_Parse(std::string(view), &chip));
  EXPECT_EQ(chip, VOD::QN17_DLPU);
}

TEST(AComputeChip, OfTheTensorUnitComesBeforeTheObjectDetector) {
  EXPECT_EQ(static_cast<int>(VOD::TOVREK_7_TPU), 4);
  EXPECT_EQ(static_cast<int>(VOD::TOVREK_7_OD), 5);
  EXPECT_EQ(static_cast<int>(VOD::RX4420_DLPU), 8);
  EXPECT_EQ(static_cast<int>(VOD::QN17_DLPU), 9);
}

}  // namespace
