// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#ifndef TARNVOD_COMMAND_WATCH_TABLE_H
#define TARNVOD_COMMAND_WATCH_TABLE_H

#include "camera_link.h"
#include "camera_statistics.h"
#include "terminal.h"

#include <deque>
#include <vector>

namespace tarn::command {

/** One camera that is watched. */
struct WatchedCamera {
  WatchedCamera(int camera, const Request& request, std::shared_ptr<ArrivalQueue> queue)
      : link(camera, request, std::move(queue)) {}

  CameraLink link;
  CameraStatistics statistics;
};

using WatchedCameras = std::deque<WatchedCamera>;

/** The live table: each camera's state and the objects of its latest frame, in as many lines as the screen has. */
std::vector<Line> watchTable(const WatchedCameras& cameras, const TerminalSize& size, Clock::time_point now);

/** What was seen of a camera, on one line. */
std::string watchSummary(const WatchedCamera& camera, Clock::duration elapsed);

}  // namespace tarn::command

#endif
