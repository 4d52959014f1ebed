// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "service/subscriber.h"

#include "rehearsal/watch.h"
#include "service/callback_exceptions.h"

#include <algorithm>

namespace vod::host {

/** Marks a callback as running while this object exists; holds no settings if the subscription has ended. */
class Subscriber::Running {
 public:
  Running(Subscriber& subscriber, int subscription, Order order) : subscriber_(subscriber) {
    Lock lock(subscriber_.mutex_);
    if (order == Order::AfterRunningCallback) {
      subscriber_.changed_.wait(lock.forWaiting(), [&]() TARNVOD_REQUIRES(subscriber_.mutex_) {
        return subscriber_.subscription_ != subscription || !subscriber_.runsElsewhere();
      });
    }
    if (subscriber_.subscription_ == subscription) {
      subscriber_.running_.push_back(std::this_thread::get_id());
      settings_ = subscriber_.settings_;
    }
  }
  ~Running() {
    if (!settings_) {
      return;
    }
    const Lock lock(subscriber_.mutex_);
    auto& running = subscriber_.running_;
    running.erase(std::find(running.begin(), running.end(), std::this_thread::get_id()));
    // Under the lock: a waiting thread may release the subscriber as soon as it has seen the change.
    subscriber_.changed_.notify_all();
  }
  Running(const Running&) = delete;
  Running& operator=(const Running&) = delete;

  const std::optional<Settings>& settings() const { return settings_; }

 private:
  Subscriber& subscriber_;
  std::optional<Settings> settings_;
};

void Subscriber::setDetectionCallback(video_object_detection_subscriber_detection_callback callback) {
  const Lock lock(mutex_);
  settings_.detection = callback;
}

void Subscriber::setTeardownCallback(video_object_detection_subscriber_teardown_callback callback) {
  const Lock lock(mutex_);
  settings_.teardown = callback;
}

void Subscriber::setReceiveEmptyHits(bool enabled) {
  const Lock lock(mutex_);
  settings_.receiveEmptyHits = enabled;
}

void Subscriber::setUseChannelConfiguration(bool enabled) {
  const Lock lock(mutex_);
  settings_.useChannelConfiguration = enabled;
}

int Subscriber::subscribe() {
  const Lock lock(mutex_);
  if (closed_ || subscription_ != 0) {
    return 0;
  }
  subscription_ = ++lastSubscription_;
  return subscription_;
}

bool Subscriber::has(int subscription) const {
  const Lock lock(mutex_);
  return subscription_ == subscription;
}

void Subscriber::unsubscribe() {
  const Lock lock(mutex_);
  subscription_ = 0;
  changed_.notify_all();
}

void Subscriber::close() {
  const Lock lock(mutex_);
  closed_ = true;
  subscription_ = 0;
  changed_.notify_all();
}

bool Subscriber::waitForCallbacks(std::chrono::milliseconds limit) {
  Lock lock(mutex_);
  return runsHere() ||
         changed_.wait_for(lock.forWaiting(), limit, [this]() TARNVOD_REQUIRES(mutex_) { return running_.empty(); });
}

void Subscriber::deliver(int subscription, const Frame& frame, const std::optional<Region>& region) {
  const Running running(*this, subscription, Order::AfterRunningCallback);
  if (running.settings() && running.settings()->detection != nullptr) {
    callDetection(*running.settings(), frame, region);
  }
}

void Subscriber::callDetection(const Settings& settings, const Frame& frame,
                               const std::optional<Region>& region) const {
  const Region* const applied = settings.useChannelConfiguration && region ? &*region : nullptr;
  const bool wantsAll = settings.receiveEmptyHits && applied == nullptr;
  Frame delivered = frame;
  std::optional<FilteredScene> filtered;
  if (!frame.verbatim && !wantsAll && (filtered = filterScene(frame, applied))) {
    if (!filtered->hasDetections && !settings.receiveEmptyHits) {
      return;
    }
    if (filtered->remaining) {
      delivered = frameOf(*filtered->remaining);
    }
  }
  const Watch::Callback watched(channel_);
  runCallback([&] { settings.detection(delivered.buffer, delivered.length, userData_); });
}

void Subscriber::tearDown(int subscription, Order order) {
  const Running running(*this, subscription, order);
  if (!running.settings()) {
    return;
  }
  unsubscribe();
  if (running.settings()->teardown != nullptr) {
    const Watch::Callback watched(channel_);
    runCallback([&] { running.settings()->teardown(userData_); });
  }
}

Registration Subscriber::registration() const {
  const Lock lock(mutex_);
  return {number_, channel_, userData_, settings_.detection, settings_.teardown, closed_};
}

bool Subscriber::runsHere() const {
  return std::find(running_.begin(), running_.end(), std::this_thread::get_id()) != running_.end();
}

bool Subscriber::runsElsewhere() const {
  const auto here = std::this_thread::get_id();
  return std::any_of(running_.begin(), running_.end(), [here](std::thread::id thread) { return thread != here; });
}

}  // namespace vod::host
