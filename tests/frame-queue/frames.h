// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#ifndef TARNVOD_TESTS_FRAME_QUEUE_FRAMES_H
#define TARNVOD_TESTS_FRAME_QUEUE_FRAMES_H

#include <gmock/gmock.h>
#include <tarnvod/frame_queue.h>

#include <cstdint>
#include <memory>
#include <optional>
#include <ostream>
#include <vector>

namespace tarn::VOD {

inline bool operator==(const FrameCounts& left, const FrameCounts& right) {
  return left.delivered == right.delivered && left.dropped == right.dropped;
}

inline void PrintTo(const FrameCounts& counts, std::ostream* out) {
  *out << counts.delivered << " delivered, " << counts.dropped << " dropped";
}

}  // namespace tarn::VOD

namespace tarn::test {

/** A frame that is known by its time stamp. */
inline std::unique_ptr<VOD::DetectionData> frameAt(std::uint64_t timestamp) {
  return std::make_unique<VOD::DetectionData>(timestamp, std::vector<VOD::Data>{}, std::vector<VOD::VodEvent>{});
}

/** What identifies a frame in these tests. */
struct Seen {
  int camera;
  std::uint64_t timestamp;
};

inline bool operator==(const Seen& left, const Seen& right) {
  return left.camera == right.camera && left.timestamp == right.timestamp;
}

inline void PrintTo(const Seen& seen, std::ostream* out) {
  *out << "camera " << seen.camera << " at " << seen.timestamp;
}

/** Takes out all that waits, in order. */
inline std::vector<Seen> drain(VOD::FrameQueue& queue) {
  std::vector<Seen> seen;
  while (const std::optional<VOD::QueuedFrame> next = queue.tryPop()) {
    seen.push_back({next->camera, next->frame->timestamp});
  }
  return seen;
}

}  // namespace tarn::test

#endif
