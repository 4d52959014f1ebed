// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

// Handles the frames of all cameras on one thread of the application. The service's threads only put them into a queue,
// so slow work here delays nobody: with KeepLatest the worker always gets each camera's newest frame. Ends with Enter.

#include <tarnvod/tarnvod.h>

#include <chrono>
#include <cstdint>
#include <functional>
#include <iostream>
#include <list>
#include <optional>
#include <set>
#include <string>
#include <thread>

using tarn::VOD::FrameQueue;

namespace {

void work(FrameQueue& queue) {
  std::set<int> camerasWithPeople;
  while (const std::optional<tarn::VOD::QueuedFrame> next = queue.pop()) {
    if (!next->frame->detections.empty() && camerasWithPeople.insert(next->camera).second) {
      std::cout << "camera " << next->camera << " sees people" << std::endl;
    }
  }
}

// Asks until the service answers, which may start later than the application.
int numberOfCameras() {
  std::uint32_t count = tarn::VOD::Handler::getNumberOfChannels();
  while (count == 0) {
    std::clog << "waiting for the service" << std::endl;
    std::this_thread::sleep_for(std::chrono::seconds(1));
    count = tarn::VOD::Handler::getNumberOfChannels();
  }
  return static_cast<int>(count);
}

}  // namespace

int main() {
  const int count = numberOfCameras();
  FrameQueue queue{static_cast<std::size_t>(count) + 1, tarn::VOD::FrameQueuePolicy::KeepLatest};
  std::thread worker(work, std::ref(queue));

  std::list<tarn::VOD::Camera> cameras;  // a camera cannot be moved
  for (int number = 1; number <= count; ++number) {
    cameras.emplace_back(number, std::set<std::string>{"human"}, queue.callback(number),
                         [](const auto& status) { std::clog << status << std::endl; });
  }

  std::cin.get();
  cameras.clear();

  queue.close();  // the worker handles the frames that are left, then ends
  worker.join();
  for (const auto& [camera, counts] : queue.counts()) {
    std::cout << "camera " << camera << ": " << counts.delivered << " frames handled, " << counts.dropped << " skipped"
              << std::endl;
  }
}
