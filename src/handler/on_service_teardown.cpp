// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "handler/handler_state.h"
#include "handler/platform_callbacks.h"

#include <syslog.h>

#include <utility>

namespace tarn::VOD {
namespace {

/** A subscription that is still being set up is not active yet; its set-up looks at this mark. */
void markDropped(const void* userData) TARNVOD_REQUIRES(handlerMutex) {
  for (SetUpUnderWay* setUp = registry->innermostSetUp; setUp != nullptr; setUp = setUp->outer) {
    setUp->dropped = setUp->dropped || setUp->userData == userData;
  }
}

/** The service has ended the subscription itself, so there is nothing to unsubscribe. */
void deleteSubscriber(ChannelSubscription& subscription) {
  if (video_object_detection_subscriber_delete(&subscription.subscriber) != 0) {
    syslog(LOG_ERR, "Failed to delete vod subscriber\n");
  }
  subscription.subscriber = nullptr;
  subscription.userData.reset();
}

}  // namespace

void onServiceTeardown(void* userData) {
  if (userData == nullptr) {
    return;
  }
  DiscardedSubscriptions discarded;
  const HandlerLock lock(handlerMutex);
  if (!lock.isOpen()) {
    return;
  }
  const auto active = registry->findActive(userData);
  if (active == registry->active.end()) {
    markDropped(userData);
    return;
  }
  SubscriptionMap::node_type record = registry->active.extract(active);
  deleteSubscriber(record.mapped());
  storeIfAbsent(registry->pending, std::move(record), discarded);
}

}  // namespace tarn::VOD
