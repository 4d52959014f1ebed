// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "handler/handler_state.h"

#include <unistd.h>

#include <exception>
#include <type_traits>

namespace tarn::VOD {

std::atomic<bool> handlerRunning = false;
std::atomic<bool> closed = false;

std::int64_t retryPeriod = 1;

// These need no destructor, and so stay usable for whoever enters the library at the end of the process.
static_assert(std::is_trivially_destructible_v<HandlerMutex> && std::is_trivially_destructible_v<LifecycleMutex>);
HandlerMutex handlerMutex;
LifecycleMutex lifecycleMutex;

// NOLINTBEGIN(cert-err58-cpp): a process without memory for these does not begin
DestroyedOnRequest<SubscriptionRegistry> registry;
DestroyedOnRequest<RetryThread> retryThread;
// NOLINTEND(cert-err58-cpp)

bool RetryThread::isRunning() const {
  return thread && process == getpid();
}

namespace {

/** A thread that still runs ends the process: Handler::deinitialize has not been called. */
void requireThatTheRetryThreadHasEnded() {
  if (!lifecycleMutex.try_lock()) {
    return;  // another thread is in the middle of starting or stopping it
  }
  if (retryThread->isRunning()) {  // uncovered: such a process aborts, and writes no figures of what was reached
    std::terminate();              // uncovered: as above
  }
  lifecycleMutex.unlock();
}

/** Makes no platform call and waits for nobody. Not analysed: that no one else uses the registry any more makes up for
 * the lock. */
void destroyRegistry() TARNVOD_ANNOTATION(no_thread_safety_analysis) {
  if (!handlerMutex.try_lock()) {
    return;  // another thread uses the registry, perhaps for as long as the
             // service takes to answer
  }
  // Whoever locks the mutex from here on finds the library closed. The lock is released before the application's
  // callables are destroyed, as everywhere.
  handlerMutex.unlock();
  registry.destroy();
}

struct ClosedAtUnload {
  ~ClosedAtUnload() {
    closed = true;
    requireThatTheRetryThreadHasEnded();
    destroyRegistry();
  }
};
const ClosedAtUnload closedAtUnload;

}  // namespace
}  // namespace tarn::VOD
