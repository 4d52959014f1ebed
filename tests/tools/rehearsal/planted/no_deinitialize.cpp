// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

// Ends while the thread of the retries still runs.

#include "planted.h"

using tarn::VOD::Handler;

int main() {
  const planted::StopSignal stop;
  Handler::initialize(1);
  Handler::setup(1, [](auto, int) {}, {"human"});
  stop.wait();
  Handler::teardown(1);
}
