// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "fleet/published_camera.h"

#include "base/output.h"
#include "cameras/service.h"
#include "records/record_size.h"

#include <algorithm>
#include <utility>

namespace tarn::command {

PublishedCamera::PublishedCamera(int number, const VOD::CameraRequest& request, const SelectionOptions& selection,
                                 NumberedFrames& frames)
    : number_(number),
      countsOnly_(selection.countsOnly),
      frames_(frames),
      since_(wallTimeNow().microseconds),
      selection_(selection),
      overflow_(number) {
  camera_.emplace(number, request, [this](std::unique_ptr<VOD::DetectionData> frame) { add(std::move(frame)); });
  takeOver(camera_->status());
}

void PublishedCamera::add(std::unique_ptr<VOD::DetectionData> frame) {
  const WallTime now = wallTimeNow();
  if (countsOnly_) {
    addCounts(*frame, now);
    return;
  }
  std::uint64_t sequence = 0;
  {
    const Lock lock(mutex_);
    if (!selection_.takes(*frame)) {
      return;
    }
    sequence = ++sequence_;
  }
  const std::size_t bytes = sizeOf(*frame);
  push({{number_, sequence, now.microseconds, now.isSet}, std::move(frame), std::nullopt}, bytes);
}

void PublishedCamera::push(NumberedFrame numbered, std::size_t bytes) {
  const std::uint64_t sequence = numbered.envelope.sequence;
  if (!frames_.push(std::move(numbered), bytes)) {
    noteOverflow(sequence);
  }
}

void PublishedCamera::addCounts(const VOD::DetectionData& frame, const WallTime& now) {
  std::optional<NumberedFrame> finished;
  {
    const Lock lock(mutex_);
    finished = numbered(counter_.add(frame, now.microseconds, now.isSet));
  }
  if (finished) {
    push(std::move(*finished), sizeof(NumberedFrame));
  }
}

std::optional<NumberedFrame> PublishedCamera::numbered(std::optional<SecondCounts> counts) {
  if (!counts) {
    return std::nullopt;
  }
  const Envelope envelope{number_, ++sequence_, counts->arrival, counts->clockSet};
  return NumberedFrame{envelope, nullptr, std::move(counts)};
}

std::optional<NumberedFrame> PublishedCamera::takeCounts(std::int64_t now) {
  const Lock lock(mutex_);
  return numbered(counter_.takeBefore(now));
}

std::optional<NumberedFrame> PublishedCamera::takeLastCounts() {
  const Lock lock(mutex_);
  return numbered(counter_.takeAll());
}

void PublishedCamera::noteOverflow(std::uint64_t sequence) {
  const Lock lock(mutex_);
  ++overflowed_;
  overflow_.add(sequence);
}

std::vector<FrameRange> PublishedCamera::takeOverflow() {
  const Lock lock(mutex_);
  return overflow_.take();
}

void PublishedCamera::noteKept(std::uint64_t sequence) {
  const Lock lock(mutex_);
  overflow_.noteKept(sequence);
  kept_ = std::max(kept_, sequence);  // counts that the main thread took may overtake those in the queue
}

bool PublishedCamera::update() {
  const VOD::CameraStatus status = camera_->status();
  if (const auto change = statusChanges_.next(status, Clock::now())) {
    printMessage("tarnvod: " + *change);
  }
  const bool isChanged = takeOver(status);
  if (!wantsDetector()) {
    return isChanged;
  }
  auto detector = lookUpDetector(number_);  // a call of the service, during which frames may come
  const Lock lock(mutex_);
  detector_ = std::move(detector);
  return isChanged || detector_;
}

bool PublishedCamera::takeOver(const VOD::CameraStatus& status) {
  const Lock lock(mutex_);
  const VOD::CameraStatus before = std::exchange(status_, status);
  const bool isChanged = before.state != status_.state || before.reason != status_.reason;
  if (isChanged) {
    since_ = wallTimeNow().microseconds;
  }
  return isChanged;
}

bool PublishedCamera::wantsDetector() const {
  const Lock lock(mutex_);
  return !detector_ && status_.state == VOD::CameraState::Receiving;
}

CameraReport PublishedCamera::report() const {
  const Lock lock(mutex_);
  return {status_, since_, kept_, overflowed_, detector_};
}

}  // namespace tarn::command
