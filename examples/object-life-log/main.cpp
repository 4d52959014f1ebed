// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

// Logs the life of each object: when it appears, when the detector becomes sure or unsure of it, when it is recognised as one
// that was seen before, and when it is gone. Shows how status and events belong together. Ends with Enter.

#include <tarnvod/tarnvod.h>

#include <cstdint>
#include <iostream>
#include <map>
#include <utility>

using tarn::VOD::Data;
using tarn::VOD::DetectionData;
using tarn::VOD::DetectionStatus;
using tarn::VOD::VodEvent;

namespace {

class LifeLog {
 public:
  void write(const DetectionData& frame) {
    for (const Data& detection : frame.detections) {
      if (detection.status != DetectionStatus::Untracked) {
        writeStatus(frame.timestamp, detection);
      }
    }
    for (const VodEvent& event : frame.events) {
      writeEvent(frame.timestamp, event);
    }
    // The frame that says that an object is gone may itself be lost: what is not seen in 600 frames or more is forgotten.
    if (++frames_ % 600 == 0) {
      earlier_ = std::exchange(statuses_, {});
    }
  }

 private:
  void writeStatus(std::uint64_t time, const Data& detection) {
    statuses_.insert(earlier_.extract(detection.objectId));
    const auto [known, isNew] = statuses_.try_emplace(detection.objectId, detection.status);
    if (isNew) {
      std::cout << time << ": " << detection.objectId << " appears: " << detection.className << std::endl;
    } else if (known->second != detection.status) {
      known->second = detection.status;
      std::cout << time << ": " << detection.objectId << " is " << detection.status << std::endl;
    }
  }

  void writeEvent(std::uint64_t time, const VodEvent& event) {
    std::cout << time << ": " << event.objectId;
    if (event.action == tarn::VOD::EventAction::Delete) {
      statuses_.erase(static_cast<std::uint32_t>(event.objectId));
      earlier_.erase(static_cast<std::uint32_t>(event.objectId));
      std::cout << " is gone" << std::endl;
      return;
    }
    std::cout << " was seen before as";
    for (const int earlier : event.objectIds) {
      std::cout << ' ' << earlier;
    }
    std::cout << std::endl;
  }

  std::map<std::uint32_t, DetectionStatus> statuses_;
  std::map<std::uint32_t, DetectionStatus> earlier_;
  std::uint64_t frames_ = 0;
};

}  // namespace

int main() {
  LifeLog log;
  // Without a class, all that the detector knows.
  const tarn::VOD::Camera camera(
      1, {}, [&log](auto frame) { log.write(*frame); }, [](const auto& status) { std::clog << status << std::endl; });
  std::cin.get();
}
