// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

// Passes N frames through one pipeline, for tools that count what a program does. The counts of two runs with different N,
// subtracted and divided by the difference of N, are the cost of one frame.

#include "pipelines.h"

#include <vod_host.h>

#include <cstdlib>
#include <exception>
#include <iostream>
#include <stdexcept>

namespace {

using tarn::VOD::bench::Pipeline;
using tarn::VOD::bench::ProcessFrame;
using tarn::VOD::bench::Sample;

template <typename Item>
const Item& named(const std::vector<Item>& items, const std::string& name) {
  for (const Item& item : items) {
    if (item.name == name) {
      return item;
    }
  }
  throw std::invalid_argument("unknown name \"" + name + "\"");
}

void run(const std::string& pipeline, const std::string& sampleName, int frames, int classes) {
  const std::vector<Sample> samples = tarn::VOD::bench::samples();
  const Sample& sample = named(samples, sampleName);
  const ProcessFrame processFrame = classes > 0 ? tarn::VOD::bench::framePipeline(sample, 1, classes)
                                                : named(tarn::VOD::bench::countedPipelines(), pipeline).prepare(sample);
  for (int frame = 0; frame < frames; ++frame) {
    processFrame();
  }
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 4 && argc != 5) {
    std::cerr << "usage: " << argv[0] << " PIPELINE SAMPLE FRAMES [REQUESTED-CLASSES]\n";
    return 2;
  }
  try {
    vod::host::reset();
    run(argv[1], argv[2], std::stoi(argv[3]), argc == 5 ? std::stoi(argv[4]) : 0);
  } catch (const std::exception& failure) {
    std::cerr << argv[0] << ": " << failure.what() << '\n';
    return 1;
  }
  return 0;
}
