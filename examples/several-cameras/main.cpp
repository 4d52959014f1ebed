// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

// Handles the frames of all cameras on one thread of the application. The service's threads only put them into a queue,
// so slow work here delays nobody: with KeepLatest the worker always gets each camera's newest frame. Ends with Enter.

#include <tarnvod/frame_queue.h>

#include <cstdint>
#include <iostream>
#include <optional>
#include <set>
#include <thread>

using tarn::VOD::FrameQueue;
using tarn::VOD::Handler;

namespace {

void work(FrameQueue& queue) {
  std::set<int> camerasWithPeople;
  while (const std::optional<tarn::VOD::QueuedFrame> next = queue.pop()) {
    if (!next->frame->detections.empty() && camerasWithPeople.insert(next->camera).second) {
      std::cout << "camera " << next->camera << " sees people" << std::endl;
    }
  }
}

}  // namespace

int main() {
  const int cameras = static_cast<int>(Handler::getNumberOfChannels());
  FrameQueue queue{static_cast<std::size_t>(cameras) + 1, tarn::VOD::FrameQueuePolicy::KeepLatest};
  std::thread worker(work, std::ref(queue));

  Handler::initialize(1);
  for (int camera = 1; camera <= cameras; ++camera) {
    Handler::setup(camera, queue.callback(), {"human"});
  }

  std::cin.get();
  for (int camera = 1; camera <= cameras; ++camera) {
    Handler::teardown(camera);
  }
  Handler::deinitialize();

  queue.close();  // the worker handles the frames that are left, then ends
  worker.join();
  for (const auto& [camera, counts] : queue.counts()) {
    std::cout << "camera " << camera << ": " << counts.delivered << " frames handled, " << counts.dropped << " skipped"
              << std::endl;
  }
}
