// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#ifndef TARNVOD_COMMAND_WATCHED_CAMERA_H
#define TARNVOD_COMMAND_WATCHED_CAMERA_H

#include "cameras/camera_link.h"
#include "cameras/camera_statistics.h"
#include "cameras/link_news.h"

#include <deque>
#include <memory>
#include <utility>

namespace tarn::command {

/** One camera that is watched. */
struct WatchedCamera {
  WatchedCamera(int camera, const Request& request, std::shared_ptr<ArrivalQueue> queue)
      : link(camera, request, std::move(queue)) {}

  CameraLink link;
  CameraStatistics statistics;
  LinkNews news;
};

using WatchedCameras = std::deque<WatchedCamera>;

}  // namespace tarn::command

#endif
