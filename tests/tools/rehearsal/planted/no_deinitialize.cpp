// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

// Ends while the thread of the retries still runs.

#include "planted.h"

#include <tarnvod/tarnvod.h>

using tarn::VOD::Handler;

void startApplication() {
  Handler::initialize(1);
  Handler::setup(1, [](auto, int) {}, {"human"});
}

void stopApplication() {
  Handler::teardown(1);
}
