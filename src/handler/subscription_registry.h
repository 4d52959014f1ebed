// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#ifndef TARNVOD_HANDLER_SUBSCRIPTION_REGISTRY_H
#define TARNVOD_HANDLER_SUBSCRIPTION_REGISTRY_H

#include "detection-data/scene_names.h"
#include "handler/failure_log.h"
#include "handler/user_data.h"

#include <tarnvod/handler.h>
#include <video_object_detection_subscriber.h>

#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <utility>

namespace tarn::VOD {

/** What an application asks for one camera. */
struct SubscriptionRequest {
  int camera = 0;
  DetectionCallback callback;
  std::set<std::string> classes;
  std::optional<VodChannelConfiguration> channelConfiguration;
};

/** One camera's record. Without user data it has no subscriber: it is pending. */
struct ChannelSubscription {
  SubscriptionRequest request;
  video_object_detection_subscriber_st* subscriber = nullptr;
  UserDataPool::Pointer userData;
  std::shared_ptr<const ClassNames> classNames;
};

/** What is known of the attributes of a camera's detector. */
struct CameraAttributes {
  std::shared_ptr<const AttributeNames> names;  // replaced, never changed; null when there are none
  bool hadValues = false;                       // now or before
};

using SubscriptionMap = std::map<int, ChannelSubscription>;

/**
 * Records that wait until `handlerMutex` is released: with a record goes the application's callable, and the
 * destructors of what it captured may take locks of the application. Declared before the lock, it ends after it. Moving
 * a record here from the registry allocates nothing:
 *
 * @code
 * discarded.insert(registry->pending.extract(camera));
 * @endcode
 */
using DiscardedSubscriptions = std::multimap<int, ChannelSubscription>;

/** A set-up that the thread holding `handlerMutex` is in the middle of. */
struct SetUpUnderWay {
  const UserData* userData;
  bool dropped;          // the service has already ended the subscription again, on this very thread
  SetUpUnderWay* outer;  // the set-up inside of whose platform calls this one began
};

/** All that `handlerMutex` guards. Destroyed from the bottom up, which makes no platform call. */
struct SubscriptionRegistry {
  std::shared_ptr<UserDataPool> userData = std::make_shared<UserDataPool>();
  SetUpUnderWay* innermostSetUp = nullptr;
  FailureLog failureLog;

  std::map<int, CameraAttributes> attributes;

  /** Cameras whose platform subscription is live. */
  SubscriptionMap active;

  /** Cameras to be retried. */
  SubscriptionMap pending;

  /** The active subscription that the platform's user data belongs to; the end for one that is over. */
  SubscriptionMap::iterator findActive(const void* platformUserData) {
    const auto found = active.find(*static_cast<const std::int32_t*>(platformUserData));
    return found != active.end() && found->second.userData.get() == platformUserData ? found : active.end();
  }
};

/** Puts a record into one of the registry's maps, in the place of one that may be there for its camera. Cannot fail. */
inline void store(SubscriptionMap& records, SubscriptionMap::node_type record,
                  DiscardedSubscriptions& discarded) noexcept {
  discarded.insert(records.extract(record.key()));
  records.insert(std::move(record));
}

/** The same, but a record that is there already stays and this one is discarded. Cannot fail. */
inline void storeIfAbsent(SubscriptionMap& records, SubscriptionMap::node_type record,
                          DiscardedSubscriptions& discarded) noexcept {
  discarded.insert(records.insert(std::move(record)).node);
}

}  // namespace tarn::VOD

#endif
