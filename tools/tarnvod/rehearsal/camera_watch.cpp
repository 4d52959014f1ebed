// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "rehearsal/camera_watch.h"

#include <algorithm>
#include <iterator>

namespace tarn::command {

using vod::schedule::Fault;
using vod::schedule::Kind;
using vod::schedule::Observation;
using vod::schedule::Schedule;

CameraWatch::CameraWatch(const Schedule& schedule, const Expectation& expectation)
    : schedule_(schedule), expectation_(expectation) {}

void CameraWatch::take(const Observation& observation) {
  const int camera = static_cast<int>(observation.number("camera"));
  if (observation.event == "fault" || observation.event == "end") {
    takeFault(observation);
  } else if (observation.event == "round") {
    received_.clear();
  } else if (observation.event == "subscribed") {
    subscribers_[camera].insert(observation.number("subscriber"));
    received_[camera].clear();
  } else if (observation.event == "left") {
    subscribers_[camera].erase(observation.number("subscriber"));
  } else if (observation.event == "received") {
    received_[camera].insert(observation.text("class"));
  }
  noteRecovery(observation.at);
}

void CameraWatch::takeFault(const Observation& observation) {
  const auto number = static_cast<std::size_t>(observation.number("number"));
  if (number >= schedule_.faults.size()) {
    return;
  }
  const Fault& fault = schedule_.faults[number];
  const bool begins = observation.event == "fault";
  if ((begins && (fault.kind == Kind::Down || fault.kind == Kind::Drop)) || fault.kind == Kind::Lose ||
      fault.kind == Kind::Change) {
    endSubscriptions(fault.camera);
  }
  received_.clear();
  const bool isOver = !begins || !formOf(fault.kind).hasDuration;
  disturbance_ = isOver ? std::optional(Disturbance{fault.kind, observation.at}) : std::nullopt;
}

void CameraWatch::endSubscriptions(const std::optional<int>& camera) {
  if (camera) {
    subscribers_[*camera].clear();
  } else {
    subscribers_.clear();
  }
}

void CameraWatch::noteRecovery(vod::schedule::Time now) {
  if (disturbance_ && !blindness()) {
    recoveries_.push_back({disturbance_->kind, now - disturbance_->at});
    disturbance_.reset();
  }
}

std::map<int, std::set<std::string>> CameraWatch::cameras() const {
  std::map<int, std::set<std::string>> result;
  for (const auto& [camera, subscribers] : subscribers_) {
    if (!subscribers.empty()) {
      const auto found = received_.find(camera);
      result[camera] = found == received_.end() ? std::set<std::string>() : found->second;
    }
  }
  return result;
}

std::optional<CameraWatch::Blindness> CameraWatch::blindness() const {
  const auto present = cameras();
  for (const auto& [camera, expected] : expectation_.cameras) {
    const std::string name = "camera " + std::to_string(camera);
    const auto found = present.find(camera);
    if (found == present.end()) {
      return Blindness{false, name + " is not set up again"};
    }
    std::set<std::string> missing;
    std::set_difference(expected.begin(), expected.end(), found->second.begin(), found->second.end(),
                        std::inserter(missing, missing.end()));
    if (!missing.empty()) {
      return Blindness{true, name + " is set up, but no longer receives the class " + *missing.begin()};
    }
  }
  return std::nullopt;
}

}  // namespace tarn::command
