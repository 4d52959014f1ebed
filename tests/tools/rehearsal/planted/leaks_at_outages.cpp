// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

// Begins a report of each outage, and forgets about it.

#include "planted.h"

#include <string>

int main() {
  const planted::StopSignal stop;
  const tarn::VOD::Camera camera(
      1, {"human"}, [](auto) {},
      [](const tarn::VOD::CameraStatus& status) {
        if (status.state == tarn::VOD::CameraState::Waiting) {
          auto* const report = new std::string(4096, ' ');
          report->append("the service does not answer");
        }
      });
  stop.wait();
}
