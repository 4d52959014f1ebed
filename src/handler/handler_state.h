// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#ifndef TARNVOD_HANDLER_HANDLER_STATE_H
#define TARNVOD_HANDLER_HANDLER_STATE_H

#include "handler/entry_lock.h"
#include "handler/subscription_registry.h"
#include "support/destroyed_on_request.h"
#include "support/thread_annotations.h"

#include <sys/types.h>

#include <atomic>
#include <cstdint>
#include <memory>
#include <mutex>
#include <thread>

// All process-wide state of the library, grouped by what guards it. Defined in one file, because the order of
// destruction matters there.

namespace tarn::VOD {

// ---- Atomic ----

/** The retry thread continues while this is true. */
extern std::atomic<bool> handlerRunning;

// ---- Constant while the retry thread runs: written before it starts ----

/** Seconds between two passes of the thread; 0 or less means no pause. */
extern std::int64_t retryPeriod;

// ---- Guarded by handlerMutex ----

using HandlerMutex = AnnotatedMutex<std::recursive_mutex>;
using HandlerLock = EntryLock<std::recursive_mutex>;

/** Recursive, because setting a camera up asks for its detector through public functions that lock it again. */
extern HandlerMutex handlerMutex;

extern DestroyedOnRequest<SubscriptionRegistry> registry TARNVOD_GUARDED_BY(handlerMutex);

// ---- Guarded by lifecycleMutex ----

using LifecycleMutex = AnnotatedMutex<std::mutex>;
using LifecycleLock = EntryLock<std::mutex>;

/** Makes starting and stopping from several threads as safe as in turn. Held while the thread is joined. */
extern LifecycleMutex lifecycleMutex;

/** A child of `fork` inherits this object, but not the thread. */
struct RetryThread {
  std::unique_ptr<std::thread> thread;
  pid_t process = 0;

  bool isRunning() const;
};
extern DestroyedOnRequest<RetryThread> retryThread TARNVOD_GUARDED_BY(lifecycleMutex);

}  // namespace tarn::VOD

#endif
