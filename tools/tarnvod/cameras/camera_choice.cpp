// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "cameras/camera_choice.h"

#include "base/errors.h"
#include "base/output.h"
#include "base/stop_signal.h"
#include "cameras/service.h"

#include <chrono>
#include <cstdint>
#include <string>
#include <thread>

namespace tarn::command {
namespace {

/** Each question that is not answered is a line in the system log. */
constexpr std::chrono::seconds askingPeriod{5};
constexpr std::chrono::milliseconds tickPeriod{50};
constexpr const char* noAnswer = "the service does not report its cameras";

std::set<int> numbersTo(std::uint32_t last) {
  std::set<int> numbers;
  for (std::uint32_t number = 1; number <= last; ++number) {
    numbers.insert(static_cast<int>(number));
  }
  return numbers;
}

}  // namespace

std::optional<std::set<int>> CameraChoice::find(Clock::time_point now) {
  if (askedAt_ && now - *askedAt_ < askingPeriod) {
    return std::nullopt;
  }
  const std::uint32_t channels = channelCount();
  for (const int camera : named_) {
    checkCameraExists(camera, channels);
  }
  if (!named_.empty()) {
    return named_;
  }
  if (channels > 0) {
    return numbersTo(channels);
  }
  if (!askedAt_) {
    printMessage(std::string("tarnvod: ") + noAnswer + "; waiting until it does");
  }
  askedAt_ = now;
  return std::nullopt;
}

std::set<int> awaitCameras(const std::vector<int>& named, const Limits& limits) {
  const Clock::time_point start = Clock::now();
  CameraChoice choice(named);
  auto cameras = choice.find(start);
  while (!cameras && !stopRequested()) {
    if (limits.reachedBy(Clock::now() - start)) {
      throw Failure(std::string(noAnswer) + "; check that it runs, or name cameras");
    }
    std::this_thread::sleep_for(tickPeriod);
    cameras = choice.find(Clock::now());
  }
  return cameras.value_or(std::set<int>());
}

}  // namespace tarn::command
