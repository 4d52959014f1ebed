// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "endurance/soak/feed.h"

#include "endurance/soak/process_hooks.h"
#include "support/detector_builder.h"
#include "support/scene_builder.h"

#include <tarnvod/tarnvod.h>
#include <vod_host.h>

#include <array>
#include <chrono>
#include <stdexcept>
#include <thread>

namespace tarn::test {

namespace host = vod::host;
using VOD::Handler;

namespace {

constexpr std::uint32_t objectId = 77;
constexpr int mostCameras = 64;
constexpr std::int64_t framesBetweenDisturbances = 5000;

/** What the frame that is on its way on this thread must be, and whether it arrived. */
struct OnItsWay {
  int camera = 0;
  std::uint64_t timestamp = 0;
  bool arrived = false;
  bool hasDetections = false;
  bool wrong = false;
};
thread_local OnItsWay onItsWay;

/** Odd while the application tears the camera down. */
std::array<std::atomic<std::uint64_t>, mostCameras + 1> teardowns{};

std::string className(int camera) {
  return "thing of camera " + std::to_string(camera);
}

std::string detectorOf(int camera) {
  ::VOD::DetectorInformation information;
  for (std::uint32_t id = 1; id <= 3; ++id) {
    addClass(information, id, id == 1 ? className(camera) : std::to_string(id));
  }
  addAttributeType(information, 1, "kind", {"small"});
  return information.SerializeAsString();
}

/** A scene without its time stamp, which is appended to each copy. */
std::string sceneOf() {
  ::VOD::Scene scene;
  for (std::uint32_t id = 1; id <= 3; ++id) {
    ::VOD::Detection& detection = addDetection(scene, id);
    detection.set_object_id(objectId);
    addAttribute(detection, 1, 0);
  }
  return scene.SerializeAsString();
}

std::string withTimestamp(const std::string& scene, std::uint64_t timestamp) {
  ::VOD::Scene stamp;
  stamp.set_timestamp(timestamp);
  return scene + stamp.SerializeAsString();  // messages that follow each other are merged
}

bool isWhole(const VOD::Data& detection, int camera) {
  return detection.className == className(camera) && detection.objectId == objectId && detection.attributes.size() == 1;
}

void receive(std::unique_ptr<VOD::DetectionData> frame, int camera) {
  onItsWay.hasDetections = !frame->detections.empty();
  const bool isRight = camera == onItsWay.camera && frame->timestamp == onItsWay.timestamp &&
                       (!onItsWay.hasDetections || isWhole(frame->detections.front(), camera));
  onItsWay.wrong = onItsWay.wrong || onItsWay.arrived || !isRight;
  onItsWay.arrived = true;
}

void setUp(int camera) {
  Handler::setup(camera, receive, {className(camera)});
}

}  // namespace

Feed::Feed(int camera, int cameras, Disturbances& disturbances)
    : camera_(camera),
      neighbour_(camera % cameras + 1),
      disturbances_(disturbances),
      scene_(sceneOf()),
      random_(static_cast<std::uint64_t>(camera)) {
  host::channel(camera - 1).detectorInformation(detectorOf(camera));
  setUp(camera);
  // The platform starts a channel's thread when it first needs it; from here on their number stays the same.
  host::channel(camera - 1).pushScene(scene_);
}

void Feed::sendUntilDelivered(std::int64_t frames, const std::atomic<bool>& stopped) {
  while (counts_.delivered < frames && !stopped) {
    sendOne();
    if (counts_.sent % framesBetweenDisturbances == 0) {
      disturbNeighbour();
    }
  }
}

void Feed::sendOne() {
  const auto& teardown = teardowns.at(static_cast<std::size_t>(camera_));
  const std::uint64_t before = teardown;
  const std::int64_t receivedBefore = framesReceivedHere();
  onItsWay = {camera_, static_cast<std::uint64_t>(++counts_.sent), false, false, false};
  host::channel(camera_ - 1).deliverScene(withTimestamp(scene_, onItsWay.timestamp));

  if (framesReceivedHere() == receivedBefore) {
    std::this_thread::yield();  // nobody is subscribed: the retry thread needs the time more
    return;
  }
  ++counts_.received;
  counts_.wrong += onItsWay.wrong ? 1 : 0;
  if (onItsWay.arrived) {
    ++counts_.delivered;
    counts_.withoutClasses += onItsWay.hasDetections ? 0 : 1;
    deliveredSoFar_ = counts_.delivered;
  } else if (before % 2 == 1 || teardown != before) {
    ++counts_.duringTeardown;
  } else {
    ++counts_.unexplained;
  }
}

void Feed::disturbNeighbour() {
  random_ = random_ * 6364136223846793005U + 1442695040888963407U;
  constexpr std::uint64_t kinds = 16;
  switch ((random_ >> 33U) % kinds) {
    case 0:
      host::takeServiceDown();
      host::bringServiceUp();
      ++disturbances_.outages;
      break;
    case 1:
    case 2:
    case 3:
    case 4: {
      auto& teardown = teardowns.at(static_cast<std::size_t>(neighbour_));
      ++teardown;
      Handler::teardown(neighbour_);
      ++teardown;
      setUp(neighbour_);
      ++disturbances_.teardowns;
      break;
    }
    case 5:
    case 6:
    case 7:
    case 8:
      setUp(neighbour_);
      ++disturbances_.updates;
      break;
    default:
      host::channel(neighbour_ - 1).dropSubscriptions();
      ++disturbances_.drops;
  }
}

void Feed::waitUntilSubscribed() const {
  const auto deadline = std::chrono::steady_clock::now() + host::waitTimeout;
  while (host::channel(camera_ - 1).subscriptions().empty()) {
    if (std::chrono::steady_clock::now() > deadline) {
      throw std::runtime_error("camera " + std::to_string(camera_) + " was not recovered");
    }
    std::this_thread::yield();
  }
}

}  // namespace tarn::test
