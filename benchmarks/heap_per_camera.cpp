// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

// Prints the bytes of the heap that are in use: before cameras are set up, after that, and after frames have been passed to them.

#include "pipelines.h"

#include <malloc.h>
#include <vod_host.h>

#include <cstddef>
#include <exception>
#include <iostream>
#include <string>
#include <vector>

namespace {

using tarn::VOD::bench::ProcessFrame;

/** Memory that is kept for reuse by this thread counts as well. */
std::size_t used() {
  return mallinfo2().uordblks;
}

void run(int cameras, long frames) {
  const auto samples = tarn::VOD::bench::samples();
  const auto& sample = samples.back();  // the street
  constexpr int classes = 80;
  const std::size_t before = used();
  std::vector<ProcessFrame> deliver;
  for (int camera = 1; camera <= cameras; ++camera) {
    deliver.push_back(tarn::VOD::bench::framePipeline(sample, camera, classes));
  }
  for (int warmUp = 0; warmUp < 100 * cameras; ++warmUp) {
    deliver[static_cast<std::size_t>(warmUp % cameras)]();
  }
  const std::size_t setUp = used();
  for (long frame = 0; frame < frames; ++frame) {
    deliver[static_cast<std::size_t>(frame % cameras)]();
  }
  std::cout << before << ' ' << setUp << ' ' << used() << '\n';
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 3) {
    std::cerr << "usage: " << argv[0] << " CAMERAS FRAMES\n";
    return 2;
  }
  try {
    vod::host::reset();
    vod::host::recordCalls(false);
    run(std::stoi(argv[1]), std::stol(argv[2]));
  } catch (const std::exception& failure) {
    std::cerr << argv[0] << ": " << failure.what() << '\n';
    return 1;
  }
  return 0;
}
