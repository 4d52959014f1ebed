// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#ifndef TARNVOD_HANDLER_CHANNEL_SUBSCRIPTION_H
#define TARNVOD_HANDLER_CHANNEL_SUBSCRIPTION_H

#include "detection-data/scene_names.h"

#include <tarnvod/handler.h>
#include <video_object_detection_subscriber.h>

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <utility>

namespace tarn::VOD {

/** What the application asked for one camera, and the platform's handle while that is subscribed. */
struct ChannelSubscription {
  DetectionCallback callback;

  /**
   * The platform gets this number's address as its user data, and reads it at times that we don't control: a callback
   * may already be on its way when the subscription ends. So the number itself stands among the process-wide state and
   * outlives every record.
   */
  std::int32_t& camera;

  video_object_detection_subscriber_st* subscriber = nullptr;
  std::set<std::string> classes;
  std::shared_ptr<const ClassNames> classIdsToNames;
  std::optional<VodChannelConfiguration> channelConfiguration;

  std::unique_ptr<ChannelSubscription> nextDiscarded;
};

using SubscriptionMap = std::map<int, std::unique_ptr<ChannelSubscription>>;

/**
 * Keeps records that are no longer needed until `handlerMutex` is released: with a record goes the application's
 * callable, and the destructors of what it captured may take locks of the application. Declared before the lock, it
 * ends after it. Adding cannot fail.
 */
class DiscardedSubscriptions {
 public:
  DiscardedSubscriptions() = default;
  DiscardedSubscriptions(const DiscardedSubscriptions&) = delete;
  DiscardedSubscriptions& operator=(const DiscardedSubscriptions&) = delete;

  ~DiscardedSubscriptions() {
    while (first_) {
      first_ = std::move(first_->nextDiscarded);
    }
  }

  void add(std::unique_ptr<ChannelSubscription> subscription) noexcept {
    subscription->nextDiscarded = std::move(first_);
    first_ = std::move(subscription);
  }

 private:
  std::unique_ptr<ChannelSubscription> first_;
};

/** Puts a record into a registry map, in the place of one that may be there for its camera. Cannot fail. */
inline void store(SubscriptionMap& registry, SubscriptionMap::node_type record,
                  DiscardedSubscriptions& discarded) noexcept {
  auto result = registry.insert(std::move(record));
  if (!result.inserted) {
    std::swap(result.position->second, result.node.mapped());
    discarded.add(std::move(result.node.mapped()));
  }
}

/** Takes a camera's record, if there is one, out of a registry map. */
inline void discard(SubscriptionMap& registry, int camera, DiscardedSubscriptions& discarded) noexcept {
  if (auto record = registry.extract(camera)) {
    discarded.add(std::move(record.mapped()));
  }
}

}  // namespace tarn::VOD

#endif
