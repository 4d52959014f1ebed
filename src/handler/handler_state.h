// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#ifndef TARNVOD_HANDLER_HANDLER_STATE_H
#define TARNVOD_HANDLER_HANDLER_STATE_H

#include "handler/subscription_registry.h"
#include "support/thread_annotations.h"

#include <atomic>
#include <cstdint>
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
using HandlerLock = ScopedLock<std::recursive_mutex>;

/** Recursive, because setting a camera up asks for its detector through public functions that lock it again. */
extern HandlerMutex handlerMutex;

extern SubscriptionRegistry registry TARNVOD_GUARDED_BY(handlerMutex);

/** Set when the registry is about to be destroyed: callbacks that still come find nothing. */
extern bool unloading TARNVOD_GUARDED_BY(handlerMutex);

// ---- Guarded by lifecycleMutex ----

using LifecycleMutex = AnnotatedMutex<std::mutex>;
using LifecycleLock = ScopedLock<std::mutex>;

/** Makes starting and stopping from several threads as safe as in turn. Held while the thread is joined. */
extern LifecycleMutex lifecycleMutex;

extern std::thread retryThread TARNVOD_GUARDED_BY(lifecycleMutex);

}  // namespace tarn::VOD

#endif
