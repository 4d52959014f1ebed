// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#ifndef TARNVOD_SUPPORT_THREAD_ANNOTATIONS_H
#define TARNVOD_SUPPORT_THREAD_ANNOTATIONS_H

#include <mutex>

// clang checks at compile time that what a mutex guards is touched only while it is held; other compilers see nothing.
#if defined(__clang__)
#define TARNVOD_ANNOTATION(name) __attribute__((name))
#else
#define TARNVOD_ANNOTATION(name)
#endif

#define TARNVOD_GUARDED_BY(mutex) TARNVOD_ANNOTATION(guarded_by(mutex))
/** Of a function, and of the lambda that a condition variable calls: the caller holds the mutex. */
#define TARNVOD_REQUIRES(mutex) TARNVOD_ANNOTATION(requires_capability(mutex))

namespace tarn::VOD {

/** A standard mutex that clang's analysis knows. `lock` throws `std::system_error` with the error number when it fails.
 */
template <typename Mutex>
class TARNVOD_ANNOTATION(capability("mutex")) AnnotatedMutex {
 public:
  void lock() TARNVOD_ANNOTATION(acquire_capability()) { mutex_.lock(); }
  bool try_lock() TARNVOD_ANNOTATION(try_acquire_capability(true)) { return mutex_.try_lock(); }
  void unlock() TARNVOD_ANNOTATION(release_capability()) { mutex_.unlock(); }

  /** The mutex itself, which the analysis does not see. */
  Mutex& unannotated() { return mutex_; }

 private:
  Mutex mutex_;
};

/** Holds a mutex for a scope. Helpers that need the mutex held take this as an argument, so that the call proves it. */
template <typename Mutex>
class TARNVOD_ANNOTATION(scoped_lockable) ScopedLock {
 public:
  explicit ScopedLock(AnnotatedMutex<Mutex>& mutex) TARNVOD_ANNOTATION(acquire_capability(mutex)) : mutex_(mutex) {
    mutex_.lock();
  }
  ~ScopedLock() TARNVOD_ANNOTATION(release_capability()) { mutex_.unlock(); }

  ScopedLock(const ScopedLock&) = delete;
  ScopedLock& operator=(const ScopedLock&) = delete;

 private:
  AnnotatedMutex<Mutex>& mutex_;
};

/** Holds a mutex, may release it early and take it again, and waits with a `std::condition_variable`. */
class TARNVOD_ANNOTATION(scoped_lockable) WaitingLock {
 public:
  explicit WaitingLock(AnnotatedMutex<std::mutex>& mutex) TARNVOD_ANNOTATION(acquire_capability(mutex))
      : lock_(mutex.unannotated()) {}
  ~WaitingLock() TARNVOD_ANNOTATION(release_capability()) = default;

  void lock() TARNVOD_ANNOTATION(acquire_capability()) { lock_.lock(); }
  void unlock() TARNVOD_ANNOTATION(release_capability()) { lock_.unlock(); }

  /** For the wait functions of `std::condition_variable`, after which the mutex is held as before. */
  std::unique_lock<std::mutex>& forWaiting() { return lock_; }

  WaitingLock(const WaitingLock&) = delete;
  WaitingLock& operator=(const WaitingLock&) = delete;

 private:
  std::unique_lock<std::mutex> lock_;
};

}  // namespace tarn::VOD

#endif
