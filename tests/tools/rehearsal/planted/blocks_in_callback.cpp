// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

// Waits in its callback, on a thread of the platform, when nobody is seen.

#include "planted.h"

#include <chrono>
#include <thread>

int main() {
  const planted::StopSignal stop;
  const tarn::VOD::Camera camera(1, {"human"}, [](auto frame) {
    if (frame->detections.empty()) {
      std::this_thread::sleep_for(std::chrono::seconds(5));
    }
  });
  stop.wait();
}
