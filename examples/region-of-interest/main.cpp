// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

// Limits the detector to the upper left quarter of the image, and prints each change of the number of people there. The
// service applies the region: detections outside of it are not delivered at all. Ends with Enter.

#include <tarnvod/tarnvod.h>

#include <cstddef>
#include <iostream>
#include <memory>

using tarn::VOD::DetectionData;
using tarn::VOD::Handler;

int main() {
  Handler::initialize(1);

  // Four numbers in the service's convention. For the host platform they are left, top, right and bottom, from 0 to 1.
  const tarn::VOD::VodChannelConfiguration upperLeftQuarter{0.0F, 0.0F, 0.5F, 0.5F};

  const auto people = std::make_shared<std::size_t>(0);
  const auto printChanges = [people](std::unique_ptr<DetectionData> frame, int) {
    if (frame->detections.size() != *people) {
      *people = frame->detections.size();
      std::cout << frame->timestamp << ": people in the region: " << *people << std::endl;
    }
  };
  Handler::setup(1, printChanges, {"human"}, upperLeftQuarter);

  std::cin.get();
  // A camera that is already set up keeps its region: to change it, tear the camera down and set it up again.
  Handler::teardown(1);
  Handler::deinitialize();
}
