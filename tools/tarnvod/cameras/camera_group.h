// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#ifndef TARNVOD_COMMAND_CAMERA_GROUP_H
#define TARNVOD_COMMAND_CAMERA_GROUP_H

#include "cameras/watched_camera.h"

#include <chrono>
#include <cstdint>
#include <functional>
#include <optional>
#include <set>
#include <string>
#include <utility>

namespace tarn::command {

/** The cameras that a subcommand watches, and the frames that come from them. They end with it. */
class CameraGroup {
 public:
  /** How long to wait for a frame before the time is looked at. */
  static constexpr std::chrono::milliseconds tickPeriod{50};

  CameraGroup(std::set<int> numbers, VOD::CameraRequest request)
      : numbers_(std::move(numbers)), request_(std::move(request)) {}

  /** Sets all up, or tries to. @throw Failure when a detector does not know a class that was asked for */
  void connect();

  /** Waits for a frame, a tick at most. */
  std::optional<Arrival> next() { return queue_.popWithin(tickPeriod); }

  WatchedCamera& cameraOf(const Arrival& arrival);

  /** Reports what has changed since the last call: one line, which names its camera. */
  void reportStatusChanges(const std::function<void(const std::string&)>& report);

  const WatchedCameras& cameras() const { return cameras_; }

  /** How many frames were dropped because nobody fetched them in time. */
  std::uint64_t dropped() const { return queue_.dropped(); }

 private:
  /** Enough for a short stall of the reader. */
  static constexpr QueueCapacity queueCapacity{256, 16U << 20U};

  const std::set<int> numbers_;
  const VOD::CameraRequest request_;
  ArrivalQueue queue_{queueCapacity};
  WatchedCameras cameras_;  // after the queue, which their frames go to
};

}  // namespace tarn::command

#endif
