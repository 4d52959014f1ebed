// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

// Makes a recording of any length: ten frames a second, in which each object moves from frame to frame and every tenth
// frame has events. Each run makes the same scenes.

#include "sample_scenes.h"

#include <recording/recording_writer.h>

#include <cmath>
#include <cstdint>
#include <exception>
#include <iostream>
#include <string>

namespace {

constexpr std::int64_t interval = 100'000;  // microseconds
constexpr std::int64_t firstArrival = 1'700'000'000'000'000;

/** Moves the object on a circle of its own. */
void move(VOD::Detection& detection, int frame) {
  const float angle = static_cast<float>(frame) * 0.01F + static_cast<float>(detection.object_id());
  const float left = 0.4F + 0.3F * std::cos(angle);
  const float top = 0.4F + 0.3F * std::sin(angle);
  detection.set_coord_1(left);
  detection.set_coord_2(top);
  detection.set_coord_3(left + 0.1F);
  detection.set_coord_4(top + 0.2F);
}

void write(const std::string& folder, int frames, int detections) {
  vod::recording::RecordingWriter writer(folder, tarn::VOD::bench::sampleDetector().SerializeAsString());
  const VOD::Scene sample = tarn::VOD::bench::sampleScene(detections);
  for (int frame = 0; frame < frames; ++frame) {
    VOD::Scene scene = sample;
    scene.set_timestamp(static_cast<std::uint64_t>(frame) * interval);
    for (VOD::Detection& detection : *scene.mutable_detections()) {
      move(detection, frame);
    }
    constexpr int eventPeriod = 10;
    if (frame % eventPeriod != 0) {
      scene.clear_events();
    }
    const std::int64_t elapsed = frame * interval;
    writer.append(scene.SerializeAsString(), {firstArrival + elapsed, elapsed});
  }
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 4) {
    std::cerr << "usage: " << argv[0] << " FOLDER FRAMES DETECTIONS\n";
    return 2;
  }
  try {
    write(argv[1], std::stoi(argv[2]), std::stoi(argv[3]));
  } catch (const std::exception& failure) {
    std::cerr << argv[0] << ": " << failure.what() << '\n';
    return 1;
  }
  return 0;
}
