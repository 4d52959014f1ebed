// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#ifndef TARNVOD_HANDLER_HANDLER_STATE_H
#define TARNVOD_HANDLER_HANDLER_STATE_H

#include "detection-data/scene_names.h"
#include "handler/channel_subscription.h"
#include "handler/thread_annotations.h"

#include <atomic>
#include <cstdint>
#include <map>
#include <memory>
#include <mutex>
#include <thread>

// All process-wide state of the library, grouped by what guards it. Defined in one file, because the order of
// destruction matters there.

namespace tarn::VOD {

using HandlerMutex = AnnotatedMutex<std::recursive_mutex>;
using HandlerLock = ScopedLock<std::recursive_mutex>;
using LifecycleMutex = AnnotatedMutex<std::mutex>;
using LifecycleLock = ScopedLock<std::mutex>;

// ---- Constant while the re-subscription thread runs: written before it starts ----

/** Seconds between two passes of the thread; 0 or less means no pause. */
extern std::int64_t retryPeriod;

// ---- Guarded by handlerMutex ----

/** Recursive, because setting a camera up asks for its detector through public functions that lock it again. */
extern HandlerMutex handlerMutex;

/** The numbers that the platform's user data points to. Never erased, see `ChannelSubscription::camera`. */
extern std::map<int, std::int32_t> cameraNumbers TARNVOD_GUARDED_BY(handlerMutex);

/** Cameras whose platform subscription is live. */
extern SubscriptionMap activeSubscriptions TARNVOD_GUARDED_BY(handlerMutex);

/** Cameras to be retried; their records have no subscriber. */
extern SubscriptionMap pendingSubscriptions TARNVOD_GUARDED_BY(handlerMutex);

/** The names that each camera's detector gave its attributes. A table is replaced, never changed; null is an empty one.
 */
extern std::map<int, std::shared_ptr<const AttributeTypeNames>> attributeTypeNames TARNVOD_GUARDED_BY(handlerMutex);
extern std::map<int, std::shared_ptr<const AttributeClassNames>> attributeClassNames TARNVOD_GUARDED_BY(handlerMutex);

/** Failed set-ups since the last that succeeded, over all cameras. */
extern std::int32_t setupFailureCount TARNVOD_GUARDED_BY(handlerMutex);

/** Set when the maps above are about to be destroyed: callbacks that still come find nothing any more. */
extern bool unloading TARNVOD_GUARDED_BY(handlerMutex);

// ---- Guarded by lifecycleMutex ----

/** Makes starting and stopping from several threads as safe as in turn. Held while the thread is joined. */
extern LifecycleMutex lifecycleMutex;
extern std::thread resubscribeThread TARNVOD_GUARDED_BY(lifecycleMutex);

// ---- Atomic ----

/** The re-subscription thread goes on while this is true. */
extern std::atomic<bool> handlerRunning;

}  // namespace tarn::VOD

#endif
