// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "cameras/camera_group.h"

#include "base/errors.h"

#include <algorithm>

namespace tarn::command {

void CameraGroup::connect() {
  for (const int camera : numbers_) {
    const VOD::CameraStatus status = cameras_.emplace_back(camera, request_, queue_).camera.status();
    if (status.state == VOD::CameraState::Refused) {
      throw Failure("camera " + std::to_string(camera) + ": " + status.reason);
    }
  }
}

WatchedCamera& CameraGroup::cameraOf(const Arrival& arrival) {
  return *std::find_if(cameras_.begin(), cameras_.end(),
                       [&](const WatchedCamera& each) { return each.number == arrival.camera; });
}

void CameraGroup::reportStatusChanges(const std::function<void(const std::string&)>& report) {
  for (WatchedCamera& camera : cameras_) {
    if (const auto change = camera.statusChanges.next(camera.camera.status(), Clock::now())) {
      report(*change);
    }
  }
}

}  // namespace tarn::command
