// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "cameras/link_news.h"

#include "base/text.h"

namespace tarn::command {
namespace {

std::string framesAreBack(const CameraLink& link) {
  const double seconds = std::chrono::duration<double>(link.lastInterruption()).count();
  return seconds > 0 ? "frames are back after " + fixed(seconds, 1) + " s" : "the service answers now, and frames come";
}

}  // namespace

std::optional<std::string> LinkNews::next(const CameraLink& link, Clock::time_point now) {
  const bool isChanged = link.state() != state_ || link.serviceAnswers() != serviceAnswered_;
  const std::string camera = "camera " + std::to_string(link.camera()) + ": ";
  if (link.state() == CameraLink::State::Receiving) {
    // Set up is not enough: it is well again once a frame has come.
    if (!toldProblem_ || !link.hasReceived() || !isChanged) {
      return std::nullopt;
    }
    toldProblem_ = false;
    state_ = link.state();
    serviceAnswered_ = link.serviceAnswers();
    return camera + framesAreBack(link);
  }
  if (!isChanged) {
    return std::nullopt;
  }
  toldProblem_ = true;
  state_ = link.state();
  serviceAnswered_ = link.serviceAnswers();
  return camera + link.problem(now);
}

}  // namespace tarn::command
