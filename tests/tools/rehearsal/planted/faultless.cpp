// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

// Without any mistake.

#include "planted.h"

#include <tarnvod/tarnvod.h>

#include <optional>
#include <set>

namespace {
std::optional<tarn::VOD::Camera> camera;
}

void startApplication() {
  camera.emplace(1, std::set<std::string>{"human"}, [](auto) {});
}

void stopApplication() {
  camera.reset();
}
