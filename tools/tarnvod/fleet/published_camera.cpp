// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "fleet/published_camera.h"

#include "base/output.h"
#include "base/wall_clock.h"
#include "cameras/service.h"
#include "records/record_size.h"

#include <cstddef>
#include <utility>

namespace tarn::command {

PublishedCamera::PublishedCamera(int number, const VOD::CameraRequest& request, const SelectionOptions& selection,
                                 NumberedFrames& frames)
    : number_(number), frames_(frames), since_(wallTimeNow().microseconds), selection_(selection) {
  camera_.emplace(number, request, [this](std::unique_ptr<VOD::DetectionData> frame) { add(std::move(frame)); });
  takeOver(camera_->status());
}

void PublishedCamera::add(std::unique_ptr<VOD::DetectionData> frame) {
  const WallTime now = wallTimeNow();
  std::uint64_t sequence = 0;
  {
    const Lock lock(mutex_);
    if (!selection_.takes(*frame)) {
      return;
    }
    sequence = ++sequence_;
  }
  const std::size_t bytes = sizeOf(*frame);
  if (!frames_.push({{number_, sequence, now.microseconds, now.isSet}, std::move(frame)}, bytes)) {
    noteOverflow(sequence);
  }
}

void PublishedCamera::noteOverflow(std::uint64_t sequence) {
  const Lock lock(mutex_);
  ++overflowed_;
  addRange(overflow_, {number_, "", sequence, sequence});
}

std::vector<FrameRange> PublishedCamera::takeOverflow() {
  const Lock lock(mutex_);
  return std::exchange(overflow_, {});
}

void PublishedCamera::noteKept(std::uint64_t sequence) {
  const Lock lock(mutex_);
  kept_ = sequence;
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
