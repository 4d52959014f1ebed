// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#ifndef TARNVOD_HANDLER_HANDLER_STATE_H
#define TARNVOD_HANDLER_HANDLER_STATE_H

#include "handler/subscription_registry.h"
#include "support/thread_annotations.h"

#include <sys/types.h>

#include <atomic>
#include <cstdint>
#include <memory>
#include <mutex>
#include <thread>
#include <utility>

// All process-wide state of the library, grouped by what guards it. Defined in one file, because the order of
// destruction matters there.

namespace tarn::VOD {

// ---- Atomic ----

/** The retry thread continues while this is true. */
extern std::atomic<bool> handlerRunning;

/** Set once, when the process ends or the library is unloaded: whoever enters the library later returns at once. */
extern std::atomic<bool> closed;

/** Relaxed: who needs more locks the mutex of what it wants to use and looks again. */
inline bool isClosed() {
  return closed.load(std::memory_order_relaxed);
}

/**
 * Holds a mutex for a scope, unless the library is closed: the thread that closed it may have found the mutex held, and
 * then leaves it and what it guards to the process.
 */
template <typename Mutex>
class TARNVOD_ANNOTATION(scoped_lockable) EntryLock {
 public:
  explicit EntryLock(AnnotatedMutex<Mutex>& mutex) TARNVOD_ANNOTATION(acquire_capability(mutex))
      TARNVOD_ANNOTATION(no_thread_safety_analysis)
      : mutex_(isClosed() ? nullptr : &mutex) {
    if (mutex_ != nullptr) {
      mutex_->lock();
    }
  }
  ~EntryLock() TARNVOD_ANNOTATION(release_capability()) TARNVOD_ANNOTATION(no_thread_safety_analysis) {
    if (mutex_ != nullptr) {
      mutex_->unlock();
    }
  }

  EntryLock(const EntryLock&) = delete;
  EntryLock& operator=(const EntryLock&) = delete;

  /** Runs an action without the mutex. Look again afterwards whether the library is open. */
  template <typename Action>
  void unlockDuring(Action action) TARNVOD_ANNOTATION(no_thread_safety_analysis) {
    AnnotatedMutex<Mutex>* const mutex = std::exchange(mutex_, nullptr);
    mutex->unlock();
    action();
    if (!isClosed()) {
      mutex->lock();
      mutex_ = mutex;
    }
  }

  /** Whether what the mutex guards may be used; otherwise return without it. */
  bool isOpen() const { return mutex_ != nullptr && !isClosed(); }

 private:
  AnnotatedMutex<Mutex>* mutex_;
};

/** An object in static storage whose destructor runs only when it is asked for. */
template <typename T>
class DestroyedOnRequest {
 public:
  DestroyedOnRequest() : value_() {}
  ~DestroyedOnRequest() {}  // NOLINT(modernize-use-equals-default): that one would be deleted
  DestroyedOnRequest(const DestroyedOnRequest&) = delete;
  DestroyedOnRequest& operator=(const DestroyedOnRequest&) = delete;

  T* operator->() { return &value_; }
  void destroy() { value_.~T(); }

 private:
  union {
    T value_;
  };
};

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
