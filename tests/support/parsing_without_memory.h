// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#ifndef TARNVOD_TESTS_SUPPORT_PARSING_WITHOUT_MEMORY_H
#define TARNVOD_TESTS_SUPPORT_PARSING_WITHOUT_MEMORY_H

#include "support/allocation_failure.h"

#include <tarnvod/video_object_detection.pb.h>

#include <memory>
#include <new>

namespace tarn::test {

/**
 * Whether a message may be destroyed after memory ran out while it was parsed. Newer Protocol Buffers count an element of
 * a list before they have the memory for it, and then destroy what never was: nothing that the library could help, and no
 * ground to test what it does.
 */
inline bool messagesSurviveFailedAllocations() {
  constexpr int elements = 8;  // the first few have room of their own
  auto scene = std::make_unique<::VOD::Scene>();
  for (int count = 0; count < elements; ++count) {
    try {
      const AllocationFailure failure(1);
      scene->add_detections();
    } catch (const std::bad_alloc&) {
    }
    if (scene->detections_size() != count) {
      static_cast<void>(scene.release());  // destroying it is what would crash
      return false;
    }
    scene->add_detections();
  }
  return true;
}

constexpr const char* noSurvival = "this version of Protocol Buffers may crash when memory runs out while it parses";

}  // namespace tarn::test

#endif
