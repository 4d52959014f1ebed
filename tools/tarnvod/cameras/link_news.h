// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#ifndef TARNVOD_COMMAND_LINK_NEWS_H
#define TARNVOD_COMMAND_LINK_NEWS_H

#include "cameras/camera_link.h"

#include <optional>
#include <string>

namespace tarn::command {

/** Notices what has changed about a link and says it once. */
class LinkNews {
 public:
  /** One line, when there is news since the last call. */
  std::optional<std::string> next(const CameraLink& link, Clock::time_point now);

 private:
  CameraLink::State state_ = CameraLink::State::Receiving;
  bool serviceAnswered_ = true;
  bool toldProblem_ = false;
};

}  // namespace tarn::command

#endif
