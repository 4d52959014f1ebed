// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "handler/retry_thread.h"

#include "handler/handler_state.h"
#include "handler/subscribe_channel.h"

#include <time.h>
#include <unistd.h>

#include <cerrno>
#include <new>
#include <system_error>

namespace tarn::VOD {
namespace {

thread_local bool onRetryThread = false;

/**
 * One attempt for one pending camera. Its callable is moved from the pending
 * record into the new one, never copied: a copy could throw, and could outlive
 * a teardown.
 */
void retry(const HandlerLock& lock, int camera, DiscardedSubscriptions& discarded) TARNVOD_REQUIRES(handlerMutex) {
  SubscriptionMap::node_type record = registry->pending.extract(camera);
  try {
    subscribeChannel(lock, record.mapped().request, discarded);
  } catch (...) {
    storeIfAbsent(registry->pending, std::move(record), discarded);
    throw;
  }
  discarded.insert(std::move(record));
}

/** One attempt for each pending camera, in ascending order. */
void retryPendingSubscriptions() {
  DiscardedSubscriptions discarded;
  const HandlerLock lock(handlerMutex);
  if (!lock.isOpen()) {  // may be uncovered: only at the end of the process, after the figures are written
    return;              // may be uncovered: as above
  }
  // Continues by camera number instead of by iterator: a platform that calls back from inside its functions can change
  // the map in between, the mutex being recursive.
  for (auto next = registry->pending.begin(); next != registry->pending.end();) {
    const int camera = next->first;
    retry(lock, camera, discarded);
    next = registry->pending.upper_bound(camera);
  }
  // may be uncovered: the way out of the return above
}

void sleepFor(std::int64_t seconds) {
  timespec remaining{static_cast<time_t>(seconds), 0};
  // uncovered: it has no other error for a whole number of seconds
  while (nanosleep(&remaining, &remaining) == -1 && errno == EINTR) {
  }
}

void retryUntilStopped() {
  onRetryThread = true;
  while (handlerRunning) {
    try {
      retryPendingSubscriptions();
    } catch (const std::bad_alloc&) {  // uncovered: another exception ends the process, which writes no figures then
      // Every camera that was not reached is still pending, and so retried when memory may be there again.
    }
    if (retryPeriod >= 1) {
      sleepFor(retryPeriod);
    }
  }
}

}  // namespace

void startRetryThread(int period) {
  if (onRetryThread) {
    return;  // it is running, and whoever stops it holds lifecycleMutex until we
             // return
  }
  const LifecycleLock lock(lifecycleMutex);
  // may be uncovered: only at the end of the process, after the figures are written
  if (!lock.isOpen() || retryThread->isRunning()) {
    return;
  }
  static_cast<void>(retryThread->thread.release());  // of the parent process: there is nothing to join here
  retryPeriod = period;
  handlerRunning = true;
  retryThread->thread = std::make_unique<std::thread>(retryUntilStopped);
  retryThread->process = getpid();
}

void stopRetryThread() {
  if (onRetryThread) {
    handlerRunning = false;
    throw std::system_error(std::make_error_code(std::errc::resource_deadlock_would_occur));
  }
  const LifecycleLock lock(lifecycleMutex);
  // may be uncovered: only at the end of the process, after the figures are written
  if (!lock.isOpen() || !retryThread->isRunning()) {
    return;
  }
  handlerRunning = false;
  retryThread->thread->join();
  retryThread->thread.reset();
}

}  // namespace tarn::VOD
