// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#ifndef TARNVOD_HANDLER_ENTRY_LOCK_H
#define TARNVOD_HANDLER_ENTRY_LOCK_H

#include "support/thread_annotations.h"

#include <atomic>
#include <utility>

// How threads enter the library, also while the process ends.

namespace tarn::VOD {

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
    // may be uncovered: only at the end of the process, after the figures are written
    if (!isClosed()) {
      mutex->lock();
      mutex_ = mutex;
    }
  }

  /** Whether what the mutex guards may be used; otherwise return without it. */
  // may be uncovered: only at the end of the process, after the figures are written
  bool isOpen() const { return mutex_ != nullptr && !isClosed(); }

 private:
  AnnotatedMutex<Mutex>* mutex_;
};

}  // namespace tarn::VOD

#endif
