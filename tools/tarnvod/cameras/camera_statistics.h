// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#ifndef TARNVOD_COMMAND_CAMERA_STATISTICS_H
#define TARNVOD_COMMAND_CAMERA_STATISTICS_H

#include "base/clock.h"

#include <tarnvod/detection_data.h>

#include <cstdint>
#include <deque>
#include <map>
#include <optional>
#include <string>

namespace tarn::command {

/** What has been seen of one camera. Takes as much memory as the last minute's objects need, however long it runs. */
class CameraStatistics {
 public:
  void add(const VOD::DetectionData& frame, Clock::time_point at);

  /** The latest frame; null before the first. */
  const VOD::DetectionData* latest() const { return latest_ ? &*latest_ : nullptr; }
  Clock::time_point latestAt() const { return latestAt_; }
  std::uint64_t frames() const { return frames_; }
  std::uint64_t events() const { return events_; }
  /** What the latest event was; empty before the first. */
  const std::string& lastEvent() const { return lastEvent_; }
  /** Frames per second over the last seconds. */
  double rate(Clock::time_point now) const;
  /** How long an object of the latest frame has been seen. */
  Clock::duration ageOf(std::uint32_t objectId) const;
  /** How many objects have been seen, by class. One that comes back after a minute counts again. */
  const std::map<std::string, std::uint64_t>& objectsByClass() const { return objectsByClass_; }

 private:
  struct Sighting {
    Clock::time_point first;
    Clock::time_point last;
  };

  void noteObjects(const VOD::DetectionData& frame, Clock::time_point at);

  std::optional<VOD::DetectionData> latest_;
  Clock::time_point latestAt_;
  std::uint64_t frames_ = 0;
  std::uint64_t events_ = 0;
  std::string lastEvent_;
  std::deque<Clock::time_point> recent_;
  std::map<std::uint32_t, Sighting> sightings_;
  std::map<std::string, std::uint64_t> objectsByClass_;
};

}  // namespace tarn::command

#endif
