// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "viewer/live_view.h"

#include "base/output.h"
#include "base/stop_signal.h"
#include "cameras/camera_metrics.h"
#include "metrics/metrics_text.h"
#include "records/frame_json.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <iterator>
#include <utility>
#include <vector>

namespace tarn::command {
namespace {

/** Often enough that nobody takes an old state for the present one; also finds out which browsers are gone. */
constexpr std::chrono::milliseconds statePeriod{500};
constexpr std::size_t statusChangesKept = 50;

float secondsBetween(Clock::time_point from, Clock::time_point to) {
  return std::chrono::duration<float>(to - from).count();
}

const char* nameOf(VOD::CameraState state) {
  switch (state) {
    case VOD::CameraState::Waiting:
      return "waiting";
    case VOD::CameraState::Receiving:
      return "receiving";
    case VOD::CameraState::Silent:
      return "silent";
    case VOD::CameraState::Refused:
      break;
  }
  return "refused";
}

Json stateOf(const WatchedCamera& camera, Clock::time_point now) {
  const VOD::CameraStatus status = camera.camera.status();
  const CameraStatistics& statistics = camera.statistics;
  const Json age = statistics.latest() == nullptr ? Json(nullptr) : Json(secondsBetween(statistics.latestAt(), now));
  return {{"camera", camera.number},           {"state", nameOf(status.state)},
          {"problem", problemOf(status, now)}, {"interruptions", status.interruptions},
          {"frames", statistics.frames()},     {"framesPerSecond", static_cast<float>(statistics.rate(now))},
          {"secondsSinceFrame", age}};
}

/** For an event. */
std::string textOf(const Json& json) {
  std::string line = oneLine(json);
  line.pop_back();
  return line;
}

}  // namespace

void LiveView::run(Liveness& liveness) {
  while (!stopRequested()) {
    if (const auto arrival = group_.next()) {
      show(*arrival);
    }
    const Clock::time_point now = Clock::now();
    liveness.note(now);
    reportStatusChanges(now);
    if (now - publishedAt_ >= statePeriod) {
      publishState(now);
    }
  }
}

std::string LiveView::metrics() const {
  std::vector<VOD::CameraStatus> statuses;
  std::transform(group_.cameras().begin(), group_.cameras().end(), std::back_inserter(statuses),
                 [](const WatchedCamera& camera) { return camera.camera.status(); });
  MetricsText text;
  addBuildInfo(text);
  addCameraMetrics(text, statuses);
  text.counter("tarnvod_view_frames_dropped_total", "Frames that were dropped because the viewer did not keep up.",
               group_.dropped());
  return text.text();
}

void LiveView::show(const Arrival& arrival) {
  WatchedCamera& camera = group_.cameraOf(arrival);
  camera.statistics.add(*arrival.frame, arrival.at);
  histories_[arrival.camera].add(*arrival.frame, arrival.at);
  std::string json = frameJson(*arrival.frame, arrival.camera);
  const EventText event = makeEvent("frame", json, millisecondsOf(arrival.at));
  // Before it is published, so that whoever has seen a frame finds it among the kept ones.
  kept_.add(arrival.at, std::move(json));
  hub_.publishFrame(event);
}

void LiveView::reportStatusChanges(Clock::time_point now) {
  group_.reportStatusChanges([&](const std::string& text) {
    printMessage("tarnvod: " + text);
    statusChanges_.push_back({now, text});
    if (statusChanges_.size() > statusChangesKept) {
      statusChanges_.pop_front();
    }
    publishedAt_ = {};
  });
}

void LiveView::publishState(Clock::time_point now) {
  publishedAt_ = now;
  hub_.publishState(makeEvent("state", textOf(state(now)), millisecondsOf(now)));
  hub_.setPast(makeEvent("past", textOf(past(now)), millisecondsOf(now)));
}

Json LiveView::state(Clock::time_point now) const {
  Json cameras = Json::array();
  for (const WatchedCamera& camera : group_.cameras()) {
    cameras.push_back(stateOf(camera, now));
  }
  Json statusChanges = Json::array();
  for (const StatusChange& change : statusChanges_) {
    statusChanges.push_back({{"secondsAgo", secondsBetween(change.at, now)}, {"text", change.text}});
  }
  return {{"cameras", std::move(cameras)},
          {"statusChanges", std::move(statusChanges)},
          {"framesDropped", group_.dropped()}};
}

Json LiveView::past(Clock::time_point now) {
  Json cameras = Json::array();
  for (auto& [camera, history] : histories_) {
    cameras.push_back(history.toJson(now));
    cameras.back()["camera"] = camera;
  }
  return {{"cameras", std::move(cameras)}};
}

}  // namespace tarn::command
