// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

// Waits in its callback, on a thread of the platform, when nobody is seen.

#include "planted.h"

#include <tarnvod/tarnvod.h>

#include <chrono>
#include <optional>
#include <set>
#include <thread>

namespace {
std::optional<tarn::VOD::Camera> camera;
}

void startApplication() {
  camera.emplace(1, std::set<std::string>{"human"}, [](auto frame) {
    if (frame->detections.empty()) {
      std::this_thread::sleep_for(std::chrono::seconds(5));
    }
  });
}

void stopApplication() {
  camera.reset();
}
