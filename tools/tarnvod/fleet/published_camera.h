// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#ifndef TARNVOD_COMMAND_PUBLISHED_CAMERA_H
#define TARNVOD_COMMAND_PUBLISHED_CAMERA_H

#include "base/lock.h"
#include "base/wall_clock.h"
#include "cameras/bounded_queue.h"
#include "cameras/status_changes.h"
#include "fleet/messages.h"
#include "fleet/second_counter.h"
#include "fleet/selection.h"
#include "fleet/unkept_frames.h"

#include <tarnvod/camera.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace tarn::command {

/** A frame, or the counts of a second, that has its number, on its way to the spool. */
struct NumberedFrame {
  Envelope envelope;
  std::unique_ptr<VOD::DetectionData> frame;  ///< null for counts
  std::optional<SecondCounts> counts;
};

using NumberedFrames = BoundedQueue<NumberedFrame>;

/** One camera of a publisher, from its construction on. Its functions are for one thread, but for `report`. */
class PublishedCamera {
 public:
  PublishedCamera(int number, const VOD::CameraRequest& request, const SelectionOptions& selection,
                  NumberedFrames& frames);

  /** Looks at the camera's state; returns whether it has changed. Prints changes for the user. */
  bool update();

  /** How the camera was at the last update. Thread-safe. */
  CameraReport report() const;

  /** Ends the subscription; no more frames come. */
  void end() { camera_.reset(); }

  /** The counts of a second that is over at this time, in microseconds by the wall clock, if only counts are sent. */
  std::optional<NumberedFrame> takeCounts(std::int64_t now);
  /** The counts of the last second, once the camera has ended. */
  std::optional<NumberedFrame> takeLastCounts();

  /** A frame is in the spool. */
  void noteKept(std::uint64_t sequence);

  /** A frame could not be kept. */
  void noteOverflow(std::uint64_t sequence);

  /** The frames that could not be kept, once those before them are kept; each once, without a start. */
  std::vector<FrameRange> takeOverflow();

 private:
  /** On a thread of the platform. */
  void add(std::unique_ptr<VOD::DetectionData> frame);
  void addCounts(const VOD::DetectionData& frame, const WallTime& now);
  void push(NumberedFrame numbered, std::size_t bytes);
  std::optional<NumberedFrame> numbered(std::optional<SecondCounts> counts) TARNVOD_REQUIRES(mutex_);
  /** Returns whether it is another state than before. */
  bool takeOver(const VOD::CameraStatus& status);
  bool wantsDetector() const;

  const int number_;
  const bool countsOnly_;
  NumberedFrames& frames_;
  StatusChanges statusChanges_;

  mutable Mutex mutex_;
  VOD::CameraStatus status_ TARNVOD_GUARDED_BY(mutex_);
  std::int64_t since_ TARNVOD_GUARDED_BY(mutex_) = 0;
  std::optional<VOD::DetectorInformation> detector_ TARNVOD_GUARDED_BY(mutex_);
  std::uint64_t kept_ TARNVOD_GUARDED_BY(mutex_) = 0;
  Selection selection_ TARNVOD_GUARDED_BY(mutex_);
  SecondCounter counter_ TARNVOD_GUARDED_BY(mutex_);
  std::uint64_t sequence_ TARNVOD_GUARDED_BY(mutex_) = 0;
  std::uint64_t overflowed_ TARNVOD_GUARDED_BY(mutex_) = 0;
  UnkeptFrames overflow_ TARNVOD_GUARDED_BY(mutex_);

  std::optional<VOD::Camera> camera_;  // last, so that it ends first
};

}  // namespace tarn::command

#endif
