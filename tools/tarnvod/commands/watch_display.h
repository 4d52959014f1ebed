// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#ifndef TARNVOD_COMMAND_WATCH_DISPLAY_H
#define TARNVOD_COMMAND_WATCH_DISPLAY_H

#include "commands/watch_table.h"

#include <memory>
#include <string>

namespace tarn::command {

/** Where `watch` shows what it receives. */
class WatchDisplay {
 public:
  virtual ~WatchDisplay() = default;
  virtual void showFrame(const VOD::DetectionData& frame, int camera) = 0;
  /** A camera's frames stay away, or are back. */
  virtual void printStatusChange(const std::string& change) = 0;
  /** Whether somebody has asked, at the display, for the end. */
  virtual bool endRequested() = 0;
  /** Time has passed. */
  virtual void refresh(const WatchedCameras& cameras, Clock::time_point now) = 0;
  /** After the last frame: one line. */
  virtual void printAtEnd(const std::string& line) = 0;
};

/** The live table on a terminal; otherwise, or with `json`, one line a frame. */
std::unique_ptr<WatchDisplay> makeWatchDisplay(bool json);

}  // namespace tarn::command

#endif
