// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "cameras/camera_metrics.h"

#include "base/clock.h"
#include "base/text.h"
#include "base/wall_clock.h"

#include <chrono>
#include <cstdint>
#include <string>

namespace tarn::command {
namespace {

using VOD::CameraState;
using VOD::CameraStatus;

/** One sample for each state, of which one is 1. */
void addStates(MetricsText& text, const std::vector<CameraStatus>& cameras) {
  text.beginGauge("tarnvod_camera_state", "1 for the state that the camera is in, 0 for the others.");
  for (const CameraStatus& camera : cameras) {
    for (const CameraState state :
         {CameraState::Waiting, CameraState::Receiving, CameraState::Silent, CameraState::Refused}) {
      MetricsText::Labels labels = labelsOf(camera);
      labels.emplace_back("state", nameOf(state));
      text.add(std::uint64_t{camera.state == state ? 1U : 0U}, labels);
    }
  }
}

void addLastFrames(MetricsText& text, const std::vector<CameraStatus>& cameras) {
  text.beginGauge("tarnvod_camera_last_frame_timestamp_seconds",
                  "When the last frame came, in seconds since 1970; absent before the first.");
  const double now = static_cast<double>(wallTimeNow().microseconds) / 1e6;
  for (const CameraStatus& camera : cameras) {
    if (camera.lastFrame) {
      const double age = std::chrono::duration<double>(Clock::now() - *camera.lastFrame).count();
      text.add(now - age, labelsOf(camera));
    }
  }
}

void addCounts(MetricsText& text, const std::vector<CameraStatus>& cameras, std::uint64_t CameraStatus::*count) {
  for (const CameraStatus& camera : cameras) {
    text.add(camera.*count, labelsOf(camera));
  }
}

}  // namespace

MetricsText::Labels labelsOf(const CameraStatus& camera) {
  return {{"camera", std::to_string(camera.camera)}};
}

void addCameraMetrics(MetricsText& text, const std::vector<CameraStatus>& cameras) {
  addStates(text, cameras);
  addLastFrames(text, cameras);
  text.beginCounter("tarnvod_camera_frames_received_total", "Frames that came from the service.");
  addCounts(text, cameras, &CameraStatus::framesReceived);
  text.beginCounter("tarnvod_camera_frames_held_back_total",
                    "Frames that may have been made without the classes that were asked for.");
  addCounts(text, cameras, &CameraStatus::framesHeldBack);
  text.beginCounter("tarnvod_camera_interruptions_total", "How often frames stayed away once they had come.");
  addCounts(text, cameras, &CameraStatus::interruptions);
}

}  // namespace tarn::command
