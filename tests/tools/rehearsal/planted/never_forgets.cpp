// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

// Keeps what it knows of each object, also when the object is gone.

#include "planted.h"

#include <cstdint>
#include <map>
#include <string>

int main() {
  const planted::StopSignal stop;
  std::map<std::uint32_t, std::string> objects;
  const tarn::VOD::Camera camera(1, {"human"}, [&objects](auto frame) {
    for (const tarn::VOD::Data& detection : frame->detections) {
      objects.emplace(detection.objectId, std::string(200, ' '));
    }
  });
  stop.wait();
}
