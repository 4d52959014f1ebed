// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

// Keeps what it knows of each object, also when the object is gone.

#include "planted.h"

#include <tarnvod/tarnvod.h>

#include <cstdint>
#include <map>
#include <optional>
#include <set>
#include <string>

namespace {
std::map<std::uint32_t, std::string> objects;
std::optional<tarn::VOD::Camera> camera;
}  // namespace

void startApplication() {
  camera.emplace(1, std::set<std::string>{"human"}, [](auto frame) {
    for (const tarn::VOD::Data& detection : frame->detections) {
      objects.emplace(detection.objectId, std::string(200, ' '));
    }
  });
}

void stopApplication() {
  camera.reset();
}
