// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#ifndef TARNVOD_COMMAND_STATUS_CHANGES_H
#define TARNVOD_COMMAND_STATUS_CHANGES_H

#include "base/clock.h"

#include <tarnvod/camera_status.h>

#include <optional>
#include <string>

namespace tarn::command {

/** What is wrong with a camera, and what is done about it; empty while it receives. */
std::string problemOf(const VOD::CameraStatus& status, Clock::time_point now);

/** Notices changes of a camera's state and reports each once. */
class StatusChanges {
 public:
  /** One line, when something has changed since the last call. */
  std::optional<std::string> next(const VOD::CameraStatus& status, Clock::time_point now);

 private:
  bool isSame(const VOD::CameraStatus& status) const;

  /** As last reported; receiving until then. */
  VOD::CameraState state_ = VOD::CameraState::Receiving;
  std::string reason_;
  std::optional<Clock::time_point> lastFrame_;
};

}  // namespace tarn::command

#endif
