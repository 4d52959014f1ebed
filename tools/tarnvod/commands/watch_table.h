// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#ifndef TARNVOD_COMMAND_WATCH_TABLE_H
#define TARNVOD_COMMAND_WATCH_TABLE_H

#include "base/terminal.h"
#include "cameras/watched_camera.h"

#include <string>
#include <vector>

namespace tarn::command {

/** The live table: each camera's state and the objects of its latest frame, in as many lines as the screen has. */
std::vector<Line> watchTable(const WatchedCameras& cameras, const TerminalSize& size, Clock::time_point now);

/** What was seen of a camera, on one line. */
std::string watchSummary(const WatchedCamera& camera, Clock::duration elapsed);

}  // namespace tarn::command

#endif
