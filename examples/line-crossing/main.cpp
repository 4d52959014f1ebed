// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

// Tells when an object crosses the vertical line in the middle of the image, and in which direction: how to follow
// objects from frame to frame, and how to forget them when the service says that they are gone. Ends with Enter.

#include <tarnvod/tarnvod.h>

#include <cstdint>
#include <iostream>
#include <map>
#include <memory>

using tarn::VOD::Data;
using tarn::VOD::DetectionData;
using tarn::VOD::Handler;

namespace {

// Boxes come in the service's convention, unchanged. In tarnvod's own recordings they are left, top, right and bottom,
// from 0 to 1; on a device, see its documentation.
constexpr float line = 0.5F;

float centreOf(const Data& detection) {
  return (detection.coord1 + detection.coord3) / 2;
}

class Line {
 public:
  void watch(const DetectionData& frame) {
    for (const Data& detection : frame.detections) {
      if (detection.status != tarn::VOD::DetectionStatus::Untracked) {
        follow(detection);
      }
    }
    for (const tarn::VOD::VodEvent& event : frame.events) {
      if (event.action == tarn::VOD::EventAction::Delete) {
        // The service counts ids with a sign in events, and without one in detections.
        isRight_.erase(static_cast<std::uint32_t>(event.objectId));
      }
    }
  }

 private:
  void follow(const Data& detection) {
    const bool isRight = centreOf(detection) > line;
    const auto [known, isNew] = isRight_.try_emplace(detection.objectId, isRight);
    if (!isNew && known->second != isRight) {
      known->second = isRight;
      std::cout << detection.className << ' ' << detection.objectId << " crossed to the "
                << (isRight ? "right" : "left") << std::endl;
    }
  }

  std::map<std::uint32_t, bool> isRight_;
};

}  // namespace

int main() {
  Handler::initialize(1);

  const auto line = std::make_shared<Line>();
  Handler::setup(1, [line](std::unique_ptr<DetectionData> frame, int) { line->watch(*frame); }, {"human", "car"});

  std::cin.get();
  Handler::teardown(1);
  Handler::deinitialize();
}
