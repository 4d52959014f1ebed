// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "handler/camera_detector.h"

#include "handler/handler_state.h"
#include "support/platform_types.h"

#include <tarnvod/read_detector_information.h>

#include <stdexcept>

namespace tarn::VOD {
namespace {

/** A subscriber that only asks: it is never subscribed and has no callbacks, and so needs no user data. */
class TemporarySubscriber {
 public:
  explicit TemporarySubscriber(int camera) {
    using Channel = ParameterType<decltype(video_object_detection_subscriber_create), 2>;
    if (video_object_detection_subscriber_create(&subscriber_, nullptr, static_cast<Channel>(channelOf(camera))) != 0) {
      throw std::runtime_error("Failed to create subscription to vod.");
    }
  }
  // There is nothing to be done about a failure to delete it.
  ~TemporarySubscriber() { static_cast<void>(video_object_detection_subscriber_delete(&subscriber_)); }

  TemporarySubscriber(const TemporarySubscriber&) = delete;
  TemporarySubscriber& operator=(const TemporarySubscriber&) = delete;

  video_object_detection_subscriber_st* get() const { return subscriber_; }

 private:
  video_object_detection_subscriber_st* subscriber_ = nullptr;
};

}  // namespace

::VOD::DetectorInformation readDetectorInformationForCamera(int camera) {
  const HandlerLock lock(handlerMutex);
  if (!lock.isOpen()) {
    return {};
  }
  if (const auto active = registry->active.find(camera); active != registry->active.end()) {
    return readDetectorInformation(active->second.subscriber);
  }
  return readDetectorInformation(TemporarySubscriber(camera).get());
}

}  // namespace tarn::VOD
