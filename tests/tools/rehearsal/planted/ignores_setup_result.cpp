// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

// Ignores that a set-up failed, and starts nothing that would set the camera up again after an outage.

#include "planted.h"

#include <tarnvod/tarnvod.h>

using tarn::VOD::Handler;

void startApplication() {
  Handler::setup(1, [](auto, int) {}, {"human"});
}

void stopApplication() {
  Handler::teardown(1);
}
