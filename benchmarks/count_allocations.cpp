// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

// Prints the number of blocks and of bytes that each pipeline allocates for a frame of each sample, as an average over the
// sample's scenes.

#include "pipelines.h"

#include <vod_host.h>

#include <cstdlib>
#include <exception>
#include <iostream>
#include <new>

namespace {

thread_local long blocks = 0;
thread_local long allocatedBytes = 0;

void run(const tarn::VOD::bench::ProcessFrame& processFrame, long frames) {
  for (long frame = 0; frame < frames; ++frame) {
    processFrame();
  }
}

long perFrame(long count, long frames) {
  return (count + frames / 2) / frames;
}

void* allocate(std::size_t size) noexcept {
  ++blocks;
  allocatedBytes += static_cast<long>(size);
  return std::malloc(size == 0 ? 1 : size);
}

}  // namespace

void* operator new(std::size_t size) {
  void* const memory = allocate(size);
  if (memory == nullptr) {
    throw std::bad_alloc();
  }
  return memory;
}

void* operator new(std::size_t size, const std::nothrow_t& /*tag*/) noexcept {
  return allocate(size);
}

void operator delete(void* memory) noexcept {
  std::free(memory);
}

void operator delete(void* memory, std::size_t /*size*/) noexcept {
  std::free(memory);
}

int main() {
  try {
    vod::host::reset();
    for (const auto& sample : tarn::VOD::bench::samples()) {
      for (const auto& pipeline : tarn::VOD::bench::countedPipelines()) {
        const auto processFrame = pipeline.prepare(sample);
        const auto frames = static_cast<long>(sample.scenes.size());
        run(processFrame, frames);  // buffers that are allocated once, such as a parser's, are not a cost of each frame
        blocks = 0;
        allocatedBytes = 0;
        run(processFrame, frames);
        std::cout << pipeline.name << '/' << sample.name << ' ' << perFrame(blocks, frames) << ' '
                  << perFrame(allocatedBytes, frames) << '\n';
      }
    }
  } catch (const std::exception& failure) {
    std::cerr << "count_allocations: " << failure.what() << '\n';
    return 1;
  }
  return 0;
}
