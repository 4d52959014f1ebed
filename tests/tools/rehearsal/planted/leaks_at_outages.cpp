// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

// Begins a report of each outage, and forgets about it.

#include "planted.h"

#include <tarnvod/tarnvod.h>

#include <optional>
#include <set>
#include <string>

namespace {
std::optional<tarn::VOD::Camera> camera;
}

void startApplication() {
  camera.emplace(
      1, std::set<std::string>{"human"}, [](auto) {},
      [](const tarn::VOD::CameraStatus& status) {
        if (status.state == tarn::VOD::CameraState::Waiting) {
          auto* const report = new std::string(4096, ' ');
          report->append("the service does not answer");
        }
      });
}

void stopApplication() {
  camera.reset();
}
