// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "cameras/camera_statistics.h"

#include "records/frame_text.h"

#include <algorithm>

namespace tarn::command {
namespace {

constexpr std::chrono::seconds rateWindow{3};
constexpr std::chrono::seconds objectMemory{60};

}  // namespace

void CameraStatistics::add(const VOD::DetectionData& frame, Clock::time_point at) {
  ++frames_;
  events_ += frame.events.size();
  if (!frame.events.empty()) {
    lastEvent_ = eventText(frame.events.back());
  }
  recent_.push_back(at);
  while (at - recent_.front() > rateWindow) {
    recent_.pop_front();
  }
  noteObjects(frame, at);
  latest_ = frame;
  latestAt_ = at;
}

void CameraStatistics::noteObjects(const VOD::DetectionData& frame, Clock::time_point at) {
  for (const VOD::Data& detection : frame.detections) {
    const auto [sighting, isNew] = sightings_.try_emplace(detection.objectId, Sighting{at, at});
    sighting->second.last = at;
    objectsByClass_[detection.className] += isNew ? 1U : 0U;
  }
  for (auto sighting = sightings_.begin(); sighting != sightings_.end();) {
    sighting = at - sighting->second.last > objectMemory ? sightings_.erase(sighting) : std::next(sighting);
  }
}

double CameraStatistics::rate(Clock::time_point now) const {
  const auto first = std::find_if(recent_.begin(), recent_.end(), [now](auto at) { return now - at <= rateWindow; });
  const auto intervals = std::distance(first, recent_.end()) - 1;
  if (intervals < 1) {
    return 0;
  }
  return static_cast<double>(intervals) / std::chrono::duration<double>(recent_.back() - *first).count();
}

Clock::duration CameraStatistics::ageOf(std::uint32_t objectId) const {
  const auto sighting = sightings_.find(objectId);
  return sighting == sightings_.end() ? Clock::duration{0} : sighting->second.last - sighting->second.first;
}

}  // namespace tarn::command
