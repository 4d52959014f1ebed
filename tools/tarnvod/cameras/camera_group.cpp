// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "cameras/camera_group.h"

#include "cameras/service.h"

#include <algorithm>

namespace tarn::command {

CameraGroup::CameraGroup(const CameraOptions& options) {
  for (const int camera : chosenCameras(options.cameras)) {
    cameras_.emplace_back(camera, options.request(), queue_);
  }
}

void CameraGroup::connect() {
  for (WatchedCamera& camera : cameras_) {
    camera.link.connect();
  }
}

WatchedCamera& CameraGroup::cameraOf(const Arrival& arrival) {
  return *std::find_if(cameras_.begin(), cameras_.end(),
                       [&](const WatchedCamera& each) { return each.link.camera() == arrival.camera; });
}

void CameraGroup::tick(Clock::time_point now) {
  for (WatchedCamera& camera : cameras_) {
    camera.link.tick(now);
  }
}

void CameraGroup::tellNews(const std::function<void(const std::string&)>& tell) {
  for (WatchedCamera& camera : cameras_) {
    if (const auto news = camera.news.next(camera.link, Clock::now())) {
      tell(*news);
    }
  }
}

}  // namespace tarn::command
