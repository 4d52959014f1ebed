// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "handler/handler_test.h"

#include "support/detector_builder.h"
#include "support/scene_builder.h"

namespace tarn::test {
namespace {

void addAttribute(::VOD::DetectorInformation& information, std::uint32_t id, const std::string& name,
                  const std::vector<std::string>& values) {
  ::VOD::AttributeType& type = addAttributeType(information, id, name);
  for (const std::string& value : values) {
    addAttributeValue(type, static_cast<std::uint32_t>(type.attribute_classes_size()) + 1, value);
  }
}

constexpr int lastTestedCamera = 10;

}  // namespace

std::string detectorBytes() {
  ::VOD::DetectorInformation information;
  addClass(information, 1, "human");
  addClass(information, 5, "car");
  addClass(information, 7, "bus");
  addAttribute(information, 10, "colour", {"red", "blue"});
  addAttribute(information, 20, "hat", {"none"});
  addAttribute(information, 30, "mood", {});
  return information.SerializeAsString();
}

std::string sceneOf(const std::vector<std::uint32_t>& classIds, std::uint64_t timestamp) {
  ::VOD::Scene scene;
  scene.set_timestamp(timestamp);
  for (const std::uint32_t classId : classIds) {
    ::VOD::Detection& detection = addDetection(scene, classId);
    detection.set_object_id(static_cast<std::uint32_t>(scene.detections_size()));
  }
  return scene.SerializeAsString();
}

HandlerTest::HandlerTest() {
  // A success first: it ends the run of failures that an earlier test may have left behind.
  vod::host::reset();
  vod::host::channel(lastTestedCamera - 1);
  Handler::setup(lastTestedCamera, nullptr, {});
  Handler::teardown(lastTestedCamera);

  vod::host::reset();
  vod::host::channel(0).detectorInformation(detectorBytes());
  vod::host::channel(1).detectorInformation(detectorBytes());
}

HandlerTest::~HandlerTest() {
  sleep_.releaseAll();
  Handler::deinitialize();
  vod::host::liftAllFaults();
  for (int camera = 0; camera <= lastTestedCamera; ++camera) {
    Handler::teardown(camera);  // the pending record of a failed update, or else the active one
    Handler::teardown(camera);
  }
  EXPECT_EQ(vod::host::liveSubscribers(), 0);
  EXPECT_EQ(vod::host::callsWithBadHandles(), 0);
}

bool HandlerTest::setUp(int camera, const std::set<std::string>& classes,
                        const std::optional<VOD::VodChannelConfiguration>& region) {
  return Handler::setup(camera, inbox_.callback(), classes, region);
}

void HandlerTest::retryOnce() {
  Handler::initialize(1);
  sleep_.waitUntilAsleep();
}

std::vector<std::vector<std::string>> HandlerTest::classesAfter(int camera, const std::string& scene) {
  inbox_.clear();
  vod::host::channel(camera - 1).deliverScene(scene);
  std::vector<std::vector<std::string>> classes;
  for (const Received& received : inbox_.received()) {
    classes.emplace_back();
    for (const VOD::Data& detection : received.frame.detections) {
      classes.back().push_back(detection.className);
    }
  }
  return classes;
}

std::vector<std::string> HandlerTest::logTexts() const {
  std::vector<std::string> texts;
  for (const LogLine& line : log_.lines()) {
    texts.push_back(line.text);
  }
  return texts;
}

}  // namespace tarn::test
