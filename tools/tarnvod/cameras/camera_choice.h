// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#ifndef TARNVOD_COMMAND_CAMERA_CHOICE_H
#define TARNVOD_COMMAND_CAMERA_CHOICE_H

#include "base/clock.h"
#include "base/options.h"

#include <optional>
#include <set>
#include <vector>

namespace tarn::command {

/**
 * The cameras of a command that keeps running: those that were named, or else all that the service has, for which the service has to
 * answer once. Its functions are for one thread.
 */
class CameraChoice {
 public:
  explicit CameraChoice(const std::vector<int>& named) : named_(named.begin(), named.end()) {}

  /**
   * The cameras, each once; nothing while they depend on a service that does not answer. The service is asked every five seconds, and the
   * user learns the first time that the command waits.
   *
   * @throw Failure  when a camera does not exist, or as `channelCount`
   */
  std::optional<std::set<int>> find(Clock::time_point now);

 private:
  const std::set<int> named_;
  std::optional<Clock::time_point> askedAt_;
};

/**
 * Waits until the cameras can be found. Empty when the command was asked to end before that.
 *
 * @throw Failure  as `find`, or when the limits do not allow to wait any longer
 */
std::set<int> awaitCameras(const std::vector<int>& named, const Limits& limits);

}  // namespace tarn::command

#endif
