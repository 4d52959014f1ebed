// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

// What a frame costs, counted: the allocations of its parse and those that the delivered record holds, not one more.

#include "handler/handler_test.h"
#include "sample_scenes.h"
#include "support/allocation_failure.h"

#include <memory>
#include <string>
#include <utility>

namespace tarn::test {
namespace {

struct Frame {
  int detections;
  int pointsPerOutline;
  int requestedClasses;
};

void PrintTo(const Frame& frame, std::ostream* out) {
  *out << frame.detections << " detections, outlines of " << frame.pointsPerOutline << " points, "
       << frame.requestedClasses << " requested classes";
}

std::string bytesOf(const Frame& frame) {
  ::VOD::Scene scene = VOD::bench::sampleScene(frame.detections);
  if (frame.pointsPerOutline > 0) {
    VOD::bench::addOutlines(scene, frame.pointsPerOutline);
  }
  return scene.SerializeAsString();
}

template <typename Call>
std::size_t allocationsOf(const Call& call) {
  const AllocationFailure counter(AllocationFailure::none);
  call();
  return counter.count();
}

std::size_t allocationsOfParse(const std::string& bytes) {
  return allocationsOf([&bytes] {
    ::VOD::Scene scene;
    static_cast<void>(scene.ParseFromArray(bytes.data(), static_cast<int>(bytes.size())));
  });
}

/** A copy allocates the record and what it holds. */
std::size_t allocationsHeldBy(const VOD::DetectionData& record) {
  return allocationsOf([&record] { static_cast<void>(std::make_unique<VOD::DetectionData>(record)); });
}

class AFrame : public HandlerTest, public testing::WithParamInterface<Frame> {};

TEST_P(AFrame, AllocatesWhatItsParseNeedsAndWhatItsRecordHolds) {
  const vod::host::Channel channel = vod::host::channel(0);
  channel.detectorInformation(VOD::bench::sampleDetector().SerializeAsString());
  std::unique_ptr<VOD::DetectionData> delivered;
  ASSERT_TRUE(Handler::setup(
      1, [&delivered](std::unique_ptr<VOD::DetectionData> frame, int /*camera*/) { delivered = std::move(frame); },
      VOD::bench::firstClasses(VOD::bench::sampleDetector(), GetParam().requestedClasses)));
  const vod::host::Registration service = vod::host::registration(channel.subscriptions().front());
  const std::string bytes = bytesOf(GetParam());

  const std::size_t allocations = allocationsOf([&] {
    service.detection(reinterpret_cast<const std::uint8_t*>(bytes.data()), static_cast<std::int32_t>(bytes.size()),
                      service.userData);
  });

  ASSERT_NE(delivered, nullptr);
  EXPECT_LE(allocations, allocationsOfParse(bytes) + allocationsHeldBy(*delivered));
}

using AFrameForAnEmptyCallable = HandlerTest;

TEST_F(AFrameForAnEmptyCallable, IsNotParsed) {
  ASSERT_TRUE(Handler::setup(1, nullptr, {"human"}));
  const vod::host::Registration service = vod::host::registration(2);
  const std::string bytes = bytesOf({12, 0, 80});
  EXPECT_GT(allocationsOfParse(bytes), 0U);
  EXPECT_EQ(allocationsOf([&] {
              service.detection(reinterpret_cast<const std::uint8_t*>(bytes.data()),
                                static_cast<std::int32_t>(bytes.size()), service.userData);
            }),
            0U);
}

INSTANTIATE_TEST_SUITE_P(OfAnySize, AFrame,
                         testing::Values(Frame{0, 0, 80}, Frame{3, 0, 80}, Frame{12, 0, 80}, Frame{12, 0, 8},
                                         Frame{12, 0, 1}, Frame{12, 48, 80}, Frame{100, 0, 80}, Frame{100, 0, 1}));

/** The model holds the values of an attribute type for each class that refers to it. */
TEST_F(HandlerTest, SetsACameraUpWithoutTheModelOfAllItsAttributes) {
  constexpr int many = 500;
  ::VOD::DetectorInformation detector;
  ::VOD::AttributeType& type = *detector.add_attribute_types();
  for (int i = 0; i < many; ++i) {
    type.add_attribute_classes();
    ::VOD::ObjectClass& objectClass = *detector.add_object_classes();
    objectClass.set_name(std::to_string(i));
    objectClass.add_attribute_type_ids(type.id());
  }
  vod::host::channel(0).detectorInformation(detector.SerializeAsString());
  const std::size_t ofTheModel = allocationsOf([] { static_cast<void>(Handler::getDetectorInformation(1)); });
  const std::size_t ofTheClasses = allocationsOf([] { static_cast<void>(Handler::getSupportedClasses()); });
  const std::size_t ofTheSetup = allocationsOf([] { ASSERT_TRUE(Handler::setup(1, nullptr, {"1"})); });
  EXPECT_LT(ofTheClasses + many, ofTheModel);
  EXPECT_LT(ofTheSetup, 20 * many);
}

}  // namespace
}  // namespace tarn::test
