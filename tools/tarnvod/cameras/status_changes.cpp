// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "cameras/status_changes.h"

#include "base/text.h"
#include "cameras/service.h"

#include <chrono>

namespace tarn::command {
namespace {

std::string secondsText(Clock::duration duration) {
  return fixed(std::chrono::duration<double>(duration).count(), 1) + " s";
}

std::string framesAreBack(const VOD::CameraStatus& status) {
  return status.interruptions > 0 ? "frames are back after " + secondsText(status.lastInterruption)
                                  : "the service answers now, and frames come";
}

}  // namespace

std::string problemOf(const VOD::CameraStatus& status, Clock::time_point now) {
  switch (status.state) {
    case VOD::CameraState::Receiving:
      return "";
    case VOD::CameraState::Silent:
      if (recordingHasEnded(status.camera)) {
        return "the recording has ended; TARNVOD_HOST_LOOP=1 would repeat it";
      }
      return status.lastFrame ? "no frame for " + secondsText(now - *status.lastFrame) : "no frame yet";
    case VOD::CameraState::Waiting:
    case VOD::CameraState::Refused:
      break;
  }
  const std::string silence =
      status.lastFrame ? "no frame for " + secondsText(now - *status.lastFrame) + "; " : std::string();
  return silence + status.reason + "; trying again every 1 s";
}

std::optional<std::string> StatusChanges::next(const VOD::CameraStatus& status, Clock::time_point now) {
  // To be set up is not enough: all is well again once a frame has come.
  const bool isBack = status.state == VOD::CameraState::Receiving;
  if (isSame(status) || (isBack && status.lastFrame == lastFrame_)) {
    return std::nullopt;
  }
  state_ = status.state;
  reason_ = status.reason;
  lastFrame_ = status.lastFrame;
  return "camera " + std::to_string(status.camera) + ": " + (isBack ? framesAreBack(status) : problemOf(status, now));
}

bool StatusChanges::isSame(const VOD::CameraStatus& status) const {
  return status.state == state_ && status.reason == reason_;
}

}  // namespace tarn::command
