// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

// Takes one road so many times and ends: for tools that count what a program does. The difference between two numbers
// of frames, divided by the difference of the numbers, is what one frame costs, whatever the tool.

#include "roads.h"

#include <vod_host.h>

#include <cstdlib>
#include <exception>
#include <iostream>
#include <stdexcept>

namespace {

using tarn::VOD::bench::Road;
using tarn::VOD::bench::Sample;
using tarn::VOD::bench::Walk;

template <typename Item>
const Item& named(const std::vector<Item>& items, const std::string& name) {
  for (const Item& item : items) {
    if (item.name == name) {
      return item;
    }
  }
  throw std::invalid_argument("there is no \"" + name + "\"");
}

void run(const std::string& road, const std::string& sampleName, int frames, int classes) {
  const std::vector<Sample> samples = tarn::VOD::bench::samples();
  const Sample& sample = named(samples, sampleName);
  const Walk walk = classes > 0 ? tarn::VOD::bench::wholeRoad(sample, 1, classes)
                                : named(tarn::VOD::bench::countedRoads(), road).prepare(sample);
  for (int frame = 0; frame < frames; ++frame) {
    walk();
  }
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 4 && argc != 5) {
    std::cerr << "usage: " << argv[0] << " ROAD SAMPLE FRAMES [REQUESTED-CLASSES]\n";
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
