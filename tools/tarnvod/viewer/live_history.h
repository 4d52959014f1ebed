// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#ifndef TARNVOD_COMMAND_LIVE_HISTORY_H
#define TARNVOD_COMMAND_LIVE_HISTORY_H

#include "base/clock.h"
#include "records/json.h"

#include <tarnvod/detection_data.h>

#include <cstdint>
#include <deque>
#include <string>
#include <unordered_map>

namespace tarn::command {

/**
 * The objects and events of a camera in the last minute, for pages that join. Its memory is bounded: of very many, the
 * oldest are forgotten early. Not thread-safe.
 */
class LiveHistory {
 public:
  void add(const VOD::DetectionData& frame, Clock::time_point at);

  /**
   * `tracks`: each object's number and class, and when it was first and last seen; `events`: as in a frame, and when each
   * was. Times are in milliseconds of the command's clock.
   */
  Json toJson(Clock::time_point now);

 private:
  struct Track {
    std::uint32_t objectId;
    std::string className;
    Clock::time_point first;
    Clock::time_point last;
  };
  struct Event {
    VOD::VodEvent event;
    Clock::time_point at;
  };

  void see(const VOD::Data& detection, Clock::time_point at);
  void forget(Clock::time_point now);
  void dropOldestTrack();

  /** By when they began. Elements stay where they are while others are added at the end or removed at the front. */
  std::deque<Track> tracks_;
  /** The latest track of each object; points into `tracks_`. */
  std::unordered_map<std::uint32_t, Track*> latest_;
  std::deque<Event> events_;
};

/** Milliseconds of the command's clock. */
std::int64_t millisecondsOf(Clock::time_point time);

}  // namespace tarn::command

#endif
