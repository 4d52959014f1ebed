// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

// Setting cameras up and tearing them down.

#include "handler/handler_state.h"
#include "handler/subscribe_channel.h"

#include <syslog.h>
#include <tarnvod/handler.h>

#include <utility>

namespace tarn::VOD {
namespace {

/** Ends a subscription at the platform; whatever fails there, the rest is still done. */
void endSubscription(ChannelSubscription& subscription) {
  if (video_object_detection_subscriber_unsubscribe(subscription.subscriber) != 0) {
    syslog(LOG_WARNING, "Failed to disconnect to vod for camera %i\n", subscription.camera);
  }
  if (video_object_detection_subscriber_delete(&subscription.subscriber) != 0) {
    syslog(LOG_WARNING, "Failed to destroy a vod subscription for camera %i\n", subscription.camera);
  }
}

}  // namespace

bool Handler::setup(int camera, DetectionCallback callback, const std::set<std::string>& classes) {
  return setup(camera, std::move(callback), classes, std::nullopt);
}

bool Handler::setup(int camera, DetectionCallback callback, const std::set<std::string>& classes,
                    const std::optional<VodChannelConfiguration>& channelConfiguration) {
  DiscardedSubscriptions discarded;
  const HandlerLock lock(handlerMutex);
  discard(pendingSubscriptions, camera, discarded);
  return subscribeChannel(lock, discarded, camera, callback, classes, channelConfiguration);
}

void Handler::teardown(int camera) {
  SubscriptionMap::node_type pending;
  SubscriptionMap::node_type active;
  {
    const HandlerLock lock(handlerMutex);
    pending = pendingSubscriptions.extract(camera);
    if (!pending) {
      active = activeSubscriptions.extract(camera);
    }
  }
  // The lock is released before the platform is called, which may wait for a callback that waits for the lock: with the
  // record taken out, that callback finds its camera gone and returns.
  if (active) {
    endSubscription(*active.mapped());
  }
}

}  // namespace tarn::VOD
