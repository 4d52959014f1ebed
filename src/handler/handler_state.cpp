// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "handler/handler_state.h"

namespace tarn::VOD {
namespace {

/** Its destructor runs after the thread's and before the registry's. */
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
SubscriptionRegistry registry;
static UnloadMark unloadMark;
LifecycleMutex lifecycleMutex;
std::thread retryThread;  // ends the process if it still runs: Handler::deinitialize has not been called

}  // namespace tarn::VOD
