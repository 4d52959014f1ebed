// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "camera/camera_test.h"

#include <algorithm>
#include <utility>

namespace tarn::test {

VOD::Camera::FrameCallback CameraLog::onFrame() {
  return [this](std::unique_ptr<VOD::DetectionData> frame) {
    const std::lock_guard lock(mutex_);
    frames_.emplace_back();
    for (const VOD::Data& detection : frame->detections) {
      frames_.back().push_back(detection.className);
    }
  };
}

VOD::Camera::StateCallback CameraLog::onState() {
  return [this](const CameraStatus& status) {
    const std::lock_guard lock(mutex_);
    reports_.push_back(status);
  };
}

std::vector<std::vector<std::string>> CameraLog::frames() const {
  const std::lock_guard lock(mutex_);
  return frames_;
}

std::vector<std::vector<std::string>> CameraLog::takeFrames() {
  const std::lock_guard lock(mutex_);
  return std::exchange(frames_, {});
}

std::vector<CameraStatus> CameraLog::reports() const {
  const std::lock_guard lock(mutex_);
  return reports_;
}

std::vector<CameraState> CameraLog::takeStates() {
  const std::lock_guard lock(mutex_);
  std::vector<CameraState> states;
  for (; takenReports_ < reports_.size(); ++takenReports_) {
    states.push_back(reports_[takenReports_].state);
  }
  return states;
}

CameraRequest people() {
  return {{"human"}, std::nullopt};
}

CameraTest::~CameraTest() = default;

void CameraTest::startRetryThread() {
  retryOnce();
  nextRetry_ = SteeredTime::now() + 1s;
}

void CameraTest::pass(SteeredTime::Duration duration) {
  while (duration > 0s) {
    const SteeredTime::Duration part = nextRetry_ ? std::min(duration, *nextRetry_ - SteeredTime::now()) : duration;
    duration -= part - SteeredTime::step(part);
    if (nextRetry_ && SteeredTime::now() >= *nextRetry_) {
      sleep_.release();
      sleep_.waitUntilAsleep();
      *nextRetry_ += 1s;
    }
  }
  SteeredTime::settle();
}

void CameraTest::passWithFrames(SteeredTime::Duration duration, int channel) {
  for (; duration > 0s; duration -= 100ms) {
    pass(100ms);
    deliver({1}, channel);
    SteeredTime::settle();
  }
}

void CameraTest::takeServiceDown() {
  vod::host::takeServiceDown();
  vod::host::drain();
}

void CameraTest::dropSubscriptions() {
  vod::host::channel(0).dropSubscriptions();
  vod::host::drain();
}

void CameraTest::deliver(const std::vector<std::uint32_t>& classIds, int channel) {
  vod::host::channel(channel).deliverScene(sceneOf(classIds));
}

}  // namespace tarn::test
