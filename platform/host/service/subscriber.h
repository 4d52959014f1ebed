// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#ifndef VOD_HOST_SERVICE_SUBSCRIBER_H
#define VOD_HOST_SERVICE_SUBSCRIBER_H

#include "lock.h"
#include "messages/scene_filter.h"

#include <vod_host.h>

#include <chrono>
#include <condition_variable>
#include <optional>
#include <thread>
#include <vector>

namespace vod::host {

/**
 * One connection to a channel. Its callbacks never run concurrently, except that a hostile teardown may run during a
 * detection. All functions are thread-safe; callbacks run without its lock.
 *
 * A subscription is identified by a number that `subscribe` returns: scenes for an earlier subscription, or for a
 * deleted subscriber, are not delivered.
 */
class Subscriber {
 public:
  Subscriber(int number, int channel, void* userData) : number_(number), channel_(channel), userData_(userData) {}

  int number() const { return number_; }
  int channel() const { return channel_; }

  void setDetectionCallback(video_object_detection_subscriber_detection_callback callback);
  void setTeardownCallback(video_object_detection_subscriber_teardown_callback callback);
  void setReceiveEmptyHits(bool enabled);
  void setUseChannelConfiguration(bool enabled);

  /** Begins a subscription and returns its number; 0 when there is one already or the subscriber has been deleted. */
  int subscribe();
  bool has(int subscription) const;
  /** Ends the subscription: none of its callbacks starts afterwards. */
  void unsubscribe();
  /** Ends the subscription and refuses further ones. */
  void close();

  /**
   * Waits until no callback runs on another thread; does not wait when called from inside one.
   *
   * @return false when the limit has passed first
   */
  bool waitForCallbacks(std::chrono::milliseconds limit);

  void deliver(int subscription, const Frame& frame, const std::optional<Region>& region);
  enum class Order { AfterRunningCallback, DuringRunningCallback };
  void tearDown(int subscription, Order order);

  Registration registration() const;

 private:
  struct Settings {
    video_object_detection_subscriber_detection_callback detection = nullptr;
    video_object_detection_subscriber_teardown_callback teardown = nullptr;
    bool receiveEmptyHits = false;
    bool useChannelConfiguration = false;
  };
  class Running;

  void callDetection(const Settings& settings, const Frame& frame, const std::optional<Region>& region) const;
  bool runsHere() const TARNVOD_REQUIRES(mutex_);
  bool runsElsewhere() const TARNVOD_REQUIRES(mutex_);

  const int number_;
  const int channel_;
  void* const userData_;

  mutable Mutex mutex_;
  std::condition_variable changed_;
  Settings settings_ TARNVOD_GUARDED_BY(mutex_);
  int subscription_ TARNVOD_GUARDED_BY(mutex_) = 0;
  int lastSubscription_ TARNVOD_GUARDED_BY(mutex_) = 0;
  bool closed_ TARNVOD_GUARDED_BY(mutex_) = false;
  std::vector<std::thread::id> running_ TARNVOD_GUARDED_BY(mutex_);
};

}  // namespace vod::host

#endif
