// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

// Counts the people who are seen in each minute: how to distinguish objects by their ids, and how to keep time by the frames'
// own time stamps. Ends with Enter.

#include <tarnvod/tarnvod.h>

#include <cstdint>
#include <iostream>
#include <optional>
#include <set>

using tarn::VOD::DetectionData;
using tarn::VOD::DetectionStatus;

namespace {

// The service chooses the unit of its time stamps. In tarnvod's own recordings it is the microsecond; on a device,
// compare the stamps of a few frames with a clock.
constexpr std::uint64_t unitsPerMinute = 60'000'000;

class PeopleCounter {
 public:
  void count(const DetectionData& frame) {
    const std::uint64_t minute = frame.timestamp / unitsPerMinute;
    if (minute != minute_) {
      report();
      minute_ = minute;
      people_.clear();
    }
    for (const tarn::VOD::Data& detection : frame.detections) {
      if (detection.status != DetectionStatus::Untracked) {  // only tracked objects keep their id from frame to frame
        people_.insert(detection.objectId);
      }
    }
    for (const tarn::VOD::VodEvent& event : frame.events) {
      if (event.action == tarn::VOD::EventAction::Connect) {  // somebody known already, whose id has changed
        for (const int earlier : event.objectIds) {
          people_.erase(static_cast<std::uint32_t>(earlier));
        }
      }
    }
  }

 private:
  void report() const {
    if (minute_) {
      std::cout << "people in minute " << *minute_ << ": " << people_.size() << std::endl;
    }
  }

  std::optional<std::uint64_t> minute_;
  std::set<std::uint32_t> people_;
};

}  // namespace

int main() {
  PeopleCounter counter;  // outlives the camera, after whose end no callback runs
  const tarn::VOD::Camera camera(
      1, {"human"}, [&counter](auto frame) { counter.count(*frame); },
      [](const auto& status) { std::clog << status << std::endl; });
  std::cin.get();
}
