// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#ifndef TARNVOD_DETAIL_CAMERA_HANDLE_H
#define TARNVOD_DETAIL_CAMERA_HANDLE_H

#include <tarnvod/detail/camera_watch.h>

#include <memory>
#include <stdexcept>
#include <utility>

namespace tarn::VOD::detail {

/** Owns a camera among those that are watched: what a `Camera` is made of, for any source of time. */
template <typename TimeSource>
class CameraHandle {
 public:
  /** @throw std::invalid_argument  when the callback for frames is empty; else as `CameraWatch::open` */
  CameraHandle(CameraSetup setup, WatchedCamera::FrameCallback onFrame, WatchedCamera::StateCallback onState)
      : camera_(watched(std::move(setup), std::move(onFrame), std::move(onState))), id_(watch().open(camera_)) {}

  CameraHandle(const CameraHandle&) = delete;
  CameraHandle& operator=(const CameraHandle&) = delete;

  ~CameraHandle() { watch().close(id_, camera_); }

  CameraStatus status() const { return watch().status(*camera_); }

 private:
  using Watch = CameraWatch<TimeSource>;

  static Watch& watch() { return Watch::instance(); }

  static std::shared_ptr<WatchedCamera> watched(CameraSetup setup, WatchedCamera::FrameCallback onFrame,
                                                WatchedCamera::StateCallback onState) {
    if (!onFrame) {
      throw std::invalid_argument("A camera needs a callback for its frames.");
    }
    return std::make_shared<WatchedCamera>(std::move(setup), std::move(onFrame), std::move(onState), TimeSource::now());
  }

  const std::shared_ptr<WatchedCamera> camera_;
  const typename Watch::Id id_;
};

}  // namespace tarn::VOD::detail

#endif
