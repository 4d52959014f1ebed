// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

// Messages that a hostile or broken service may send: their conversion costs what they hold and what the model holds. The
// large ones are about a mebibyte; a conversion whose cost grows with the square of that would exceed the time limit of CTest.

#include "support/allocation_failure.h"
#include "support/detector_builder.h"

#include <gmock/gmock.h>
#include <tarnvod/detector_information.h>
#include <tarnvod/video_object_detection.pb.h>

#include <string>

namespace tarn::VOD {
namespace {

using test::addAttributeType;
using test::addClass;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;
using testing::SizeIs;

constexpr int many = 100'000;

std::size_t allocationsOfConverting(const ::VOD::DetectorInformation& message) {
  const test::AllocationFailure counter(test::AllocationFailure::none);
  const DetectorInformation information(message);
  return counter.count();
}

/** An attribute type with as many values, each without a name. */
void addTypeWithValues(::VOD::DetectorInformation& message, std::uint32_t id, const std::string& name, int values) {
  addAttributeType(message, id, name, {});
  auto& type = *message.mutable_attribute_types(message.attribute_types_size() - 1);
  for (int i = 0; i < values; ++i) {
    type.add_attribute_classes();
  }
}

TEST(AClassThatRefersToATypeAgainAndAgain, CostsNoMoreAllocationsThanOneThatRefersToItOnce) {
  ::VOD::DetectorInformation message;
  auto& objectClass = addClass(message, 1, "car", {1});
  addTypeWithValues(message, 1, "Colour", 100);
  const std::size_t once = allocationsOfConverting(message);
  for (int i = 0; i < many; ++i) {
    objectClass.add_attribute_type_ids(1);
  }
  EXPECT_EQ(allocationsOfConverting(message), once);
}

TEST(ClassesOfOneName, CostNoSchemaEach) {
  ::VOD::DetectorInformation message;
  addTypeWithValues(message, 1, "Colour", 100);
  addClass(message, 1, "car", {1});
  const std::size_t one = allocationsOfConverting(message);
  constexpr int classes = 1000;
  for (int i = 1; i < classes; ++i) {
    addClass(message, 1, "car", {1});
  }
  EXPECT_LT(allocationsOfConverting(message), one + 3 * classes);
}

TEST(AClassThatRefersToManyTypes, HasThemAll) {
  ::VOD::DetectorInformation message;
  auto& objectClass = addClass(message, 1, "car");
  for (int i = 0; i < many; ++i) {
    const auto id = static_cast<std::uint32_t>(i);
    addAttributeType(message, id, std::to_string(i), {});
    objectClass.add_attribute_type_ids(id);
    objectClass.add_attribute_type_ids(id + many);
  }
  EXPECT_THAT(DetectorInformation(message).getObjectVariants().at("car").attributes, SizeIs(many));
}

TEST(TypesOfOneIdAndName, AreStoodForByTheLastInEachOfManyClasses) {
  ::VOD::DetectorInformation message;
  for (int i = 0; i < many; ++i) {
    addAttributeType(message, 1, "Colour", {});
    addClass(message, 1, std::to_string(i), {1});
  }
  addAttributeType(message, 1, "Colour", {"red"});
  const DetectorInformation information(message);
  EXPECT_THAT(information.getObjectVariants(), SizeIs(many));
  EXPECT_THAT(information.getObjectVariants().at("0").attributes, ElementsAre(Pair("Colour", ElementsAre("red"))));
}

TEST(ATypeWithALongNameAndManyValues, HasItsNameComparedOnce) {
  ::VOD::DetectorInformation message;
  const std::string name(500'000, 'n');
  addTypeWithValues(message, 1, name, many);
  EXPECT_THAT(DetectorInformation(message).getSupportedAttributes(), ElementsAre(Pair(name, ElementsAre(""))));
}

TEST(AClassThatRefersToIdsThatNoTypeHas, HasNoAttributes) {
  ::VOD::DetectorInformation message;
  auto& objectClass = addClass(message, 1, "car");
  for (int i = 0; i < many; ++i) {
    objectClass.add_attribute_type_ids(0);
    addAttributeType(message, 1, "Colour", {});
  }
  EXPECT_THAT(DetectorInformation(message).getObjectVariants().at("car").attributes, IsEmpty());
}

}  // namespace
}  // namespace tarn::VOD
