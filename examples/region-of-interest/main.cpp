// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

// Limits the detector to the upper left quarter of the image, and prints each change of the number of people there. The
// service applies the region: detections outside of it are not delivered at all. Ends with Enter.

#include <tarnvod/tarnvod.h>

#include <cstddef>
#include <iostream>

int main() {
  // Four numbers in the service's convention. For the host platform they are left, top, right and bottom, from 0 to 1.
  const tarn::VOD::VodChannelConfiguration upperLeftQuarter{0.0F, 0.0F, 0.5F, 0.5F};

  std::size_t people = 0;
  const auto printChanges = [&people](auto frame) {
    if (frame->detections.size() != people) {
      people = frame->detections.size();
      std::cout << frame->timestamp << ": people in the region: " << people << std::endl;
    }
  };
  // A camera keeps its region: to change it, end this one and make another.
  const tarn::VOD::Camera camera(1, tarn::VOD::CameraRequest{{"human"}, upperLeftQuarter}, printChanges,
                                 [](const auto& status) { std::clog << status << std::endl; });
  std::cin.get();
}
