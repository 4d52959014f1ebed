// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#ifndef TARNVOD_COMMAND_RAW_SUBSCRIPTION_H
#define TARNVOD_COMMAND_RAW_SUBSCRIPTION_H

#include "cameras/bounded_queue.h"

#include <recording/scene_index.h>
#include <video_object_detection_subscriber.h>

#include <atomic>
#include <chrono>
#include <memory>
#include <string>

namespace tarn::command {

/** A scene as the service sent it, and when it came. */
struct ArrivedScene {
  std::string bytes;
  vod::recording::Arrival arrival;
  int camera = 0;  ///< counted from 1
};

using SceneQueue = BoundedQueue<ArrivedScene>;

/** How long to wait before a dropped subscription is tried again. */
inline constexpr std::chrono::seconds retryPeriod{1};

/**
 * A subscription at the platform's own interface: scenes as the service sends them, byte for byte, empty ones included.
 * Ends when it is destroyed.
 */
class RawSubscription {
 public:
  /**
   * @param camera  counted from 1
   * @param scenes  receives the scenes; shared with the platform's threads
   * @throw Failure  when the service does not take part
   */
  RawSubscription(int camera, std::shared_ptr<SceneQueue> scenes);
  ~RawSubscription();
  RawSubscription(const RawSubscription&) = delete;
  RawSubscription& operator=(const RawSubscription&) = delete;

  /** The serialized description of the detector. @throw Failure */
  std::string readDetectorInformation() const;

  /** Starts the scenes. @throw Failure */
  void subscribe();

  /** Whether the service has ended the subscription. */
  bool isDropped() const { return tap_->dropped; }

 private:
  /** What the platform's threads write to. */
  struct Tap {
    const std::shared_ptr<SceneQueue> scenes;
    const int camera;
    std::atomic<bool> dropped{false};
  };

  static Tap* makeTap(int camera, std::shared_ptr<SceneQueue> scenes);
  void check(int result, const char* what) const;

  const int camera_;
  Tap* const tap_;
  video_object_detection_subscriber_st* subscriber_ = nullptr;
};

}  // namespace tarn::command

#endif
