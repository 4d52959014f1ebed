// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

// Parses the scenes of a recording and does nothing with them: what every program that reads a recording has to do.

#include <recording/recording_reader.h>
#include <tarnvod/video_object_detection.pb.h>

#include <cstdint>
#include <exception>
#include <iostream>
#include <variant>

int main(int argc, char** argv) {
  if (argc != 2) {
    std::cerr << "usage: " << argv[0] << " FOLDER\n";
    return 2;
  }
  try {
    vod::recording::RecordingReader reader(argv[1]);
    VOD::Scene scene;
    std::uint64_t parsed = 0;
    for (auto next = reader.next(); std::holds_alternative<vod::recording::RecordedScene>(next); next = reader.next()) {
      parsed += scene.ParseFromString(std::get<vod::recording::RecordedScene>(next).bytes) ? 1U : 0U;
    }
    std::cout << parsed << '\n';
  } catch (const std::exception& failure) {
    std::cerr << argv[0] << ": " << failure.what() << '\n';
    return 1;
  }
  return 0;
}
