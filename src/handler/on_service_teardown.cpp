// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "handler/handler_state.h"
#include "handler/platform_callbacks.h"

#include <syslog.h>

#include <utility>

namespace tarn::VOD {

void onServiceTeardown(void* userData) {
  if (userData == nullptr) {
    return;
  }
  DiscardedSubscriptions discarded;
  const HandlerLock lock(handlerMutex);
  if (unloading) {
    return;
  }
  const int camera = *static_cast<const std::int32_t*>(userData);
  auto record = activeSubscriptions.extract(camera);
  if (!record) {
    return;
  }
  // The service has ended the subscription itself, so there is nothing to unsubscribe.
  if (video_object_detection_subscriber_delete(&record.mapped()->subscriber) != 0) {
    syslog(LOG_ERR, "Failed to delete vod subscriber\n");
  }
  record.mapped()->subscriber = nullptr;

  auto parked = pendingSubscriptions.insert(std::move(record));
  if (!parked.inserted) {
    discarded.add(std::move(parked.node.mapped()));
  }
}

}  // namespace tarn::VOD
