// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "handler/handler_state.h"

namespace tarn::VOD {
namespace {

/** Its destructor runs after the thread's and before the maps'. */
struct UnloadMark {
  ~UnloadMark() {
    const HandlerLock lock(handlerMutex);
    unloading = true;
  }
};

}  // namespace

std::int64_t retryPeriod = 1;
std::atomic<bool> handlerRunning = false;

// These two need no destructor, and so can still be used by a callback of a subscription that nobody tore down.
HandlerMutex handlerMutex;
bool unloading = false;

// Destroyed from the bottom up. Destroying the records makes no platform call.
std::map<int, std::int32_t> cameraNumbers;
std::int32_t setupFailureCount = 0;
std::map<int, std::shared_ptr<const AttributeTypeNames>> attributeTypeNames;
std::map<int, std::shared_ptr<const AttributeClassNames>> attributeClassNames;
SubscriptionMap activeSubscriptions;
SubscriptionMap pendingSubscriptions;
static UnloadMark unloadMark;
LifecycleMutex lifecycleMutex;
std::thread resubscribeThread;  // ends the process if it still runs: Handler::deinitialize has not been called

}  // namespace tarn::VOD
