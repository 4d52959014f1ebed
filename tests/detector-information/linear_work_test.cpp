// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

// The library's work on detector information grows with its size, whatever names and ids the service chooses. Work is
// counted, not timed: the program is linked to a library whose code reports each basic block that it runs.

#include "support/detector_builder.h"

#include <gtest/gtest.h>
#include <tarnvod/tarnvod.h>
#include <vod_host.h>

#include <cstdint>
#include <map>
#include <string>

namespace {

thread_local std::uint64_t basicBlocks = 0;

}  // namespace

/** Called by the counted code of the library. */
extern "C" void __sanitizer_cov_trace_pc() noexcept {  // NOLINT(bugprone-reserved-identifier): the compiler's name
  ++basicBlocks;
}

namespace tarn::test {
namespace {

using VOD::Handler;

/** Detector information of a kind, with any number of parts. */
struct Shape {
  const char* name;
  void (*add)(::VOD::DetectorInformation& message, std::uint32_t parts);
  /** The model holds the values of a type for each class that refers to it, so it can be larger than the message. */
  bool isModelOfItsSize = true;
};

void PrintTo(const Shape& shape, std::ostream* out) {
  *out << shape.name;
}

void addClasses(::VOD::DetectorInformation& message, std::uint32_t parts) {
  for (std::uint32_t i = 0; i < parts; ++i) {
    addClass(message, i << 14U, std::to_string(i));
  }
}

void addClassesOfOneName(::VOD::DetectorInformation& message, std::uint32_t parts) {
  for (std::uint32_t i = 0; i < parts; ++i) {
    addClass(message, 1, "car", {1});
  }
}

void addTypesOfOneId(::VOD::DetectorInformation& message, std::uint32_t parts) {
  for (std::uint32_t i = 0; i < parts; ++i) {
    addAttributeType(message, 1, std::to_string(i), {"value"});
    message.mutable_object_classes(0)->add_attribute_type_ids(1);
  }
}

void addTypesOfOneIdAndName(::VOD::DetectorInformation& message, std::uint32_t parts) {
  for (std::uint32_t i = 0; i < parts; ++i) {
    addAttributeType(message, 1, "colour", {"red"});
    addClass(message, i, std::to_string(i), {1});
  }
}

void addTypesThatDifferInHighBits(::VOD::DetectorInformation& message, std::uint32_t parts) {
  for (std::uint32_t i = 0; i < parts; ++i) {
    addAttributeType(message, i << 14U, std::to_string(i), {"value"});
    message.mutable_object_classes(0)->add_attribute_type_ids(i << 14U);
  }
}

/** The ids of values are looked up by multiplying them by the golden ratio; these all end at one place. */
void addValuesThatCollide(::VOD::DetectorInformation& message, std::uint32_t parts) {
  constexpr std::uint64_t inverse = 0xF1DE83E19937733DU;
  static_assert(inverse * 0x9E3779B97F4A7C15U == 1);
  for (std::uint32_t i = 0; i < parts; ++i) {
    const std::uint64_t id = inverse * i;
    auto& type = *message.add_attribute_types();
    type.set_id(static_cast<std::uint32_t>(id >> 32U));
    auto& value = *type.add_attribute_classes();
    value.set_id(static_cast<std::uint32_t>(id));
    value.set_name("value");
  }
}

void addValuesOfOneType(::VOD::DetectorInformation& message, std::uint32_t parts) {
  addAttributeType(message, 1, "colour", {});
  for (std::uint32_t i = 0; i < parts; ++i) {
    auto& value = *message.mutable_attribute_types(0)->add_attribute_classes();
    value.set_id(i);
    value.set_name(std::to_string(i));
  }
}

void addTypesAndClassesWithoutAnything(::VOD::DetectorInformation& message, std::uint32_t parts) {
  for (std::uint32_t i = 0; i < parts; ++i) {
    message.add_attribute_types();
    message.add_object_classes();
  }
}

void addClassesThatShareALargeType(::VOD::DetectorInformation& message, std::uint32_t parts) {
  addValuesOfOneType(message, parts);
  for (std::uint32_t i = 0; i < parts; ++i) {
    addClass(message, i, std::to_string(i), {1});
  }
}

std::string informationOf(const Shape& shape, std::uint32_t parts) {
  ::VOD::DetectorInformation message;
  addClass(message, 0, "human");
  shape.add(message, parts);
  return message.SerializeAsString();
}

std::string informationOfSize(const Shape& shape, std::size_t bytes) {
  constexpr std::uint32_t sample = 10'000;
  return informationOf(shape, static_cast<std::uint32_t>(bytes * sample / informationOf(shape, sample).size()));
}

template <typename Call>
std::uint64_t workOf(const Call& call) {
  const std::uint64_t before = basicBlocks;
  call();
  return basicBlocks - before;
}

/** The work of everything that an application can do with a camera's detector. */
std::map<std::string, std::uint64_t> workOn(const Shape& shape, std::size_t bytes) {
  vod::host::reset();
  vod::host::channel(0).detectorInformation(informationOfSize(shape, bytes));
  std::map<std::string, std::uint64_t> work;
  work["setup"] = workOf([] { EXPECT_TRUE(Handler::setup(1, nullptr, {"human"})); });
  work["getSupportedClasses"] = workOf([] { EXPECT_EQ(Handler::getSupportedClasses().count("human"), 1U); });
  work["getSupportedAttributes"] = workOf([] { static_cast<void>(Handler::getSupportedAttributes()); });
  if (shape.isModelOfItsSize) {
    work["getDetectorInformation"] = workOf([] { static_cast<void>(Handler::getDetectorInformation(1)); });
  }
  Handler::teardown(1);
  return work;
}

class ADetectorInformation : public testing::TestWithParam<Shape> {};

TEST_P(ADetectorInformation, OfAMebibyteCostsLittleMoreThanEightTimesTheWorkOfAnEighth) {
  constexpr std::size_t mebibyte = std::size_t{1} << 20U;
  // Sorted look-ups add a factor of 17/14; work that grows with the square would be 64 times as much.
  constexpr std::uint64_t most = 12;

  const auto ofAnEighth = workOn(GetParam(), mebibyte / 8);
  const auto ofAll = workOn(GetParam(), mebibyte);

  for (const auto& [call, work] : ofAll) {
    EXPECT_GT(work, 0U) << call << " is not counted";
    EXPECT_LT(work, most * ofAnEighth.at(call)) << call << ": " << work << " basic blocks";
  }
}

INSTANTIATE_TEST_SUITE_P(OfAnyShape, ADetectorInformation,
                         testing::Values(Shape{"Classes", addClasses}, Shape{"ClassesOfOneName", addClassesOfOneName},
                                         Shape{"TypesOfOneId", addTypesOfOneId},
                                         Shape{"TypesOfOneIdAndName", addTypesOfOneIdAndName},
                                         Shape{"TypesThatDifferInHighBits", addTypesThatDifferInHighBits},
                                         Shape{"ValuesThatCollide", addValuesThatCollide},
                                         Shape{"ValuesOfOneType", addValuesOfOneType},
                                         Shape{"NothingAgainAndAgain", addTypesAndClassesWithoutAnything},
                                         Shape{"ClassesThatShareALargeType", addClassesThatShareALargeType, false}),
                         [](const auto& shape) { return shape.param.name; });

}  // namespace
}  // namespace tarn::test
