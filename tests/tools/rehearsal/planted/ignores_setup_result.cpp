// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

// Ignores that a set-up failed, and starts nothing that would set the camera up again after an outage.

#include "planted.h"

using tarn::VOD::Handler;

int main() {
  const planted::StopSignal stop;
  Handler::setup(1, [](auto, int) {}, {"human"});
  stop.wait();
  Handler::teardown(1);
}
