// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#ifndef TARNVOD_COMMAND_WATCHED_CAMERA_H
#define TARNVOD_COMMAND_WATCHED_CAMERA_H

#include "cameras/bounded_queue.h"
#include "cameras/camera_statistics.h"
#include "cameras/status_changes.h"
#include "records/record_size.h"

#include <tarnvod/camera.h>

#include <cstddef>
#include <deque>
#include <memory>

namespace tarn::command {

/** A frame on its way from the service's thread to the main thread. */
struct Arrival {
  int camera = 0;
  Clock::time_point at;
  std::unique_ptr<VOD::DetectionData> frame;
};

using ArrivalQueue = BoundedQueue<Arrival>;

/** One camera that is watched, from its construction on. */
struct WatchedCamera {
  WatchedCamera(int camera, const VOD::CameraRequest& request, ArrivalQueue& queue)
      : number(camera), camera(camera, request, [camera, &queue](std::unique_ptr<VOD::DetectionData> frame) {
          const std::size_t bytes = sizeOf(*frame);
          queue.push({camera, Clock::now(), std::move(frame)}, bytes);
        }) {}

  const int number;
  CameraStatistics statistics;
  StatusChanges statusChanges;
  const VOD::Camera camera;  // last, so that it ends first
};

using WatchedCameras = std::deque<WatchedCamera>;

}  // namespace tarn::command

#endif
