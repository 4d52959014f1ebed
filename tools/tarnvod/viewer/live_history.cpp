// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "viewer/live_history.h"

#include <nlohmann/json.hpp>

#include <chrono>
#include <utility>

namespace tarn::command {
namespace {

constexpr std::chrono::seconds kept{60};
/** An object that was away for longer starts a new track. */
constexpr std::chrono::seconds longestGap{1};
constexpr std::size_t mostTracks = 2000;
constexpr std::size_t mostEvents = 500;

}  // namespace

std::int64_t millisecondsOf(Clock::time_point time) {
  return std::chrono::duration_cast<std::chrono::milliseconds>(time.time_since_epoch()).count();
}

void LiveHistory::add(const VOD::DetectionData& frame, Clock::time_point at) {
  for (const VOD::Data& detection : frame.detections) {
    see(detection, at);
  }
  for (const VOD::VodEvent& event : frame.events) {
    events_.push_back({event, at});
  }
  forget(at);
}

void LiveHistory::see(const VOD::Data& detection, Clock::time_point at) {
  Track*& latest = latest_[detection.objectId];
  if (latest != nullptr && at - latest->last <= longestGap) {
    latest->last = at;
    return;
  }
  latest = &tracks_.emplace_back(Track{detection.objectId, detection.className, at, at});
}

void LiveHistory::forget(Clock::time_point now) {
  while (!tracks_.empty() && (tracks_.size() > mostTracks || now - tracks_.front().last > kept)) {
    dropOldestTrack();
  }
  while (!events_.empty() && (events_.size() > mostEvents || now - events_.front().at > kept)) {
    events_.pop_front();
  }
}

void LiveHistory::dropOldestTrack() {
  const auto found = latest_.find(tracks_.front().objectId);
  if (found->second == &tracks_.front()) {
    latest_.erase(found);
  }
  tracks_.pop_front();
}

Json LiveHistory::toJson(Clock::time_point now) {
  forget(now);
  Json tracks = Json::array();
  for (const Track& track : tracks_) {
    if (now - track.last <= kept) {
      tracks.push_back({{"objectId", track.objectId},
                        {"className", track.className},
                        {"first", millisecondsOf(track.first)},
                        {"last", millisecondsOf(track.last)}});
    }
  }
  Json events = Json::array();
  for (const Event& each : events_) {
    events.push_back(command::toJson(each.event));
    events.back()["at"] = millisecondsOf(each.at);
  }
  return {{"tracks", std::move(tracks)}, {"events", std::move(events)}};
}

}  // namespace tarn::command
