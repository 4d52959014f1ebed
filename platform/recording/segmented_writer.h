// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#ifndef VOD_RECORDING_SEGMENTED_WRITER_H
#define VOD_RECORDING_SEGMENTED_WRITER_H

#include "recording/recording_writer.h"
#include "recording/scene_index.h"

#include <cstdint>
#include <deque>
#include <filesystem>
#include <limits>
#include <optional>
#include <string>
#include <string_view>

namespace vod::recording {

/** What a recording of segments may hold; the oldest segments are removed first. */
struct SegmentLimits {
  static constexpr std::uint64_t unlimited = std::numeric_limits<std::uint64_t>::max();

  std::uint64_t bytes = unlimited;         ///< of all files of all segments
  std::uint64_t microseconds = unlimited;  ///< of recorded time, by the monotonic clock

  /** At which size, and after which time, a new segment begins: eight, or sixteen, make up the whole. */
  std::uint64_t segmentBytes() const;
  std::uint64_t segmentMicroseconds() const;
};

/**
 * Writes a recording of segments. It goes on behind the segments that are there. The recording never holds more than its
 * limit and one segment, whatever a single scene needs. Age is recorded time: a wall clock that jumps removes nothing,
 * nor does a time in which nothing was recorded. Not for use by two threads at once.
 */
class SegmentedWriter {
 public:
  /** @throw RecordingError  when the folder holds a plain recording or cannot be written */
  SegmentedWriter(std::filesystem::path folder, std::string detectorInformation, const SegmentLimits& limits);

  /** Adds a scene, to a new segment where the present one is full. @throw RecordingError as RecordingWriter::append */
  void append(std::string_view scene, const Arrival& arrival);

  /** Has the next scene begin a segment. */
  void endSegment() { writer_.reset(); }

 private:
  struct Segment {
    std::uint64_t number = 0;
    std::uint64_t bytes = 0;
    BootId boot{};
    std::int64_t first = 0;  ///< arrival of its first scene by the monotonic clock
    std::int64_t last = 0;
  };

  void findSegments();
  bool isFull(std::string_view scene, const Arrival& arrival) const;
  void beginSegment(const Arrival& arrival);
  void removeOldSegments();
  void remove(const Segment& segment) const;
  std::uint64_t bytesOfSegments() const;
  /** Recorded time from the end of a segment to now. */
  std::uint64_t ageOf(std::size_t position) const;

  const std::filesystem::path folder_;
  const std::string detectorInformation_;
  const SegmentLimits limits_;
  std::deque<Segment> segments_;
  std::optional<RecordingWriter> writer_;
};

}  // namespace vod::recording

#endif
