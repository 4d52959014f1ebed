// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

// Reports each crossing of the vertical line in the middle of the image, with its direction: how to follow objects from
// frame to frame and from id to id, and how not to count one that stands on the line again and again. On the installed
// recording of a street there are 26 crossings; docs/recordings.md lists them. Ends with Enter.

#include <tarnvod/tarnvod.h>

#include <cstdint>
#include <iostream>
#include <map>

using tarn::VOD::Data;
using tarn::VOD::DetectionData;

namespace {

// Boxes are in the service's convention, unchanged. In tarnvod's own recordings they are left, top, right and bottom, from 0
// to 1; for a device, see its documentation.
constexpr float line = 0.5F;
constexpr float margin = 0.02F;  // an object has crossed when its centre is this far beyond the line

class Line {
 public:
  void watch(const DetectionData& frame) {
    if (frame.timestamp < time_) {
      isRight_.clear();  // the detector, or the recording, has started again, and its ids as well
    }
    time_ = frame.timestamp;
    for (const tarn::VOD::VodEvent& event : frame.events) {
      // The service's ids are signed in events, and unsigned in detections.
      const auto object = static_cast<std::uint32_t>(event.objectId);
      if (event.action == tarn::VOD::EventAction::Delete) {
        isRight_.erase(object);
        continue;
      }
      for (const int earlier : event.objectIds) {  // Connect: the object has a new id, and is on the side where it was
        if (const auto side = isRight_.extract(static_cast<std::uint32_t>(earlier))) {
          isRight_[object] = side.mapped();
        }
      }
    }
    for (const Data& detection : frame.detections) {
      if (detection.status != tarn::VOD::DetectionStatus::Untracked) {
        follow(detection);
      }
    }
  }

 private:
  void follow(const Data& detection) {
    const float centre = (detection.coord1 + detection.coord3) / 2;
    bool& isRight = isRight_.try_emplace(detection.objectId, centre > line).first->second;
    if (isRight ? centre < line - margin : centre > line + margin) {
      isRight = !isRight;
      std::cout << detection.className << ' ' << detection.objectId << " crossed to the "
                << (isRight ? "right" : "left") << std::endl;
    }
  }

  std::map<std::uint32_t, bool> isRight_;
  std::uint64_t time_ = 0;
};

}  // namespace

int main() {
  Line middle;
  const tarn::VOD::Camera camera(
      1, {"human"}, [&middle](auto frame) { middle.watch(*frame); },
      [](const auto& status) { std::clog << status << std::endl; });
  std::cin.get();
}
