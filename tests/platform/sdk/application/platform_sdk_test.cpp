// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

// The library built against another platform's header, whose integer types are others, and linked with its library.

#include <gmock/gmock.h>
#include <sdk_service.h>
#include <tarnvod/tarnvod.h>

#include <cstddef>
#include <limits>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace tarn::VOD {
namespace {

class AnSdkWithOtherTypes : public testing::Test {
 protected:
  AnSdkWithOtherTypes() {
    ::VOD::DetectorInformation information;
    ::VOD::ObjectClass& car = *information.add_object_classes();
    car.set_id(5);
    car.set_name("car");
    const std::string bytes = information.SerializeAsString();
    sdk_service_set_information(bytes.data(), bytes.size());
  }

  ~AnSdkWithOtherTypes() override { Handler::teardown(2); }

  bool setUp(const std::optional<VodChannelConfiguration>& region = std::nullopt) {
    const auto receive = [this](std::unique_ptr<DetectionData> frame, int camera) {
      EXPECT_EQ(camera, 2);
      frames_.push_back(std::move(frame));
    };
    return Handler::setup(2, receive, {"car"}, region);
  }

  std::vector<std::unique_ptr<DetectionData>> frames_;
};

TEST_F(AnSdkWithOtherTypes, DeliversFrames) {
  ASSERT_TRUE(setUp());
  ::VOD::Scene scene;
  scene.set_timestamp(42);
  scene.add_detections()->set_class_id(5);
  const std::string bytes = scene.SerializeAsString();

  ASSERT_EQ(sdk_service_send(1, bytes.data(), bytes.size()), 0);

  ASSERT_EQ(frames_.size(), 1U);
  EXPECT_EQ(frames_[0]->timestamp, 42U);
  ASSERT_EQ(frames_[0]->detections.size(), 1U);
  EXPECT_EQ(frames_[0]->detections[0].className, "car");
}

TEST_F(AnSdkWithOtherTypes, HasFramesOfImpossibleLengthDeliveredEmpty) {
  ASSERT_TRUE(setUp());

  ASSERT_EQ(sdk_service_send(1, "", std::numeric_limits<std::size_t>::max()), 0);

  ASSERT_EQ(frames_.size(), 1U);
  EXPECT_TRUE(frames_[0]->detections.empty());
}

TEST_F(AnSdkWithOtherTypes, GetsTheRegionOfInterest) {
  ASSERT_TRUE(setUp(VodChannelConfiguration{0.25F, 0.5F, 0.75F, 1.0F}));

  std::size_t size = 0;
  const char* const bytes = sdk_service_region(1, &size);
  ::VOD::ChannelConfiguration configuration;
  ASSERT_TRUE(configuration.ParseFromArray(bytes, static_cast<int>(size)));
  EXPECT_EQ(configuration.roi().coord_1(), 0.25F);
  EXPECT_EQ(configuration.roi().coord_4(), 1.0F);
}

TEST_F(AnSdkWithOtherTypes, AnswersTheQueries) {
  EXPECT_TRUE(Handler::isDlpuEnabled());
  EXPECT_EQ(Handler::getNumberOfChannels(), 4U);
  EXPECT_EQ(Handler::getNumberOfSimultaneousChannels(), 2U);
  EXPECT_EQ(Handler::getServiceVersion(), "7.65");
  EXPECT_THAT(Handler::getSupportedClasses(), testing::ElementsAre("car"));
}

TEST_F(AnSdkWithOtherTypes, HasNoCameraBeyondItsChannels) {
  EXPECT_FALSE(Handler::setup(70000, nullptr, {"car"}));
  Handler::teardown(70000);
}

}  // namespace
}  // namespace tarn::VOD
