// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

// The thread that subscribes cameras again whose set-up failed or that the service dropped.

#include "handler/handler_state.h"
#include "handler/subscribe_channel.h"

#include <tarnvod/handler.h>
#include <time.h>

#include <cerrno>
#include <new>
#include <system_error>

namespace tarn::VOD {
namespace {

thread_local bool onResubscribeThread = false;

/** One attempt for each pending camera, in ascending order. */
void retryPendingSubscriptions() {
  DiscardedSubscriptions discarded;
  DetectionCallback callback;  // destroyed after the lock is released, as the discarded records are
  const HandlerLock lock(handlerMutex);
  // Walks by camera number instead of by iterator: a platform that calls back from inside its functions can change the
  // map under our feet, the mutex being recursive.
  for (auto next = pendingSubscriptions.begin(); next != pendingSubscriptions.end();) {
    const int camera = next->first;
    callback = next->second->callback;
    const std::set<std::string> classes = next->second->classes;
    const std::optional<VodChannelConfiguration> channelConfiguration = next->second->channelConfiguration;
    if (subscribeChannel(lock, discarded, camera, callback, classes, channelConfiguration)) {
      discard(pendingSubscriptions, camera, discarded);
    }
    next = pendingSubscriptions.upper_bound(camera);
  }
}

void sleepFor(std::int64_t seconds) {
  timespec remaining{static_cast<time_t>(seconds), 0};
  while (nanosleep(&remaining, &remaining) == -1 && errno == EINTR) {
  }
}

void resubscribe() {
  onResubscribeThread = true;
  while (handlerRunning) {
    try {
      retryPendingSubscriptions();
    } catch (const std::bad_alloc&) {
      // Every camera that was not reached is still pending, and so retried when memory may be there again.
    }
    if (retryPeriod >= 1) {
      sleepFor(retryPeriod);
    }
  }
}

}  // namespace

void Handler::initialize(int period) {
  if (onResubscribeThread) {
    return;  // it is running, and whoever stops it holds lifecycleMutex until we return
  }
  const LifecycleLock lock(lifecycleMutex);
  if (resubscribeThread.joinable()) {
    return;
  }
  retryPeriod = period;
  handlerRunning = true;
  resubscribeThread = std::thread(resubscribe);
}

void Handler::deinitialize() {
  if (onResubscribeThread) {
    handlerRunning = false;
    throw std::system_error(std::make_error_code(std::errc::resource_deadlock_would_occur));
  }
  const LifecycleLock lock(lifecycleMutex);
  if (!resubscribeThread.joinable()) {
    return;
  }
  handlerRunning = false;
  resubscribeThread.join();
}

}  // namespace tarn::VOD
