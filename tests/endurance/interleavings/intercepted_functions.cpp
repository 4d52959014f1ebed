// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

// The functions of the system with which the library's threads meet. Called by a thread of a run they lead to its
// scheduler; called by any other they do what they always do.

#include "scheduler.h"

#include <dlfcn.h>
#include <pthread.h>
#include <time.h>

#include <cerrno>

namespace {

using tarn::test::Scheduler;

template <typename Function>
Function next(const char* name) {
  return reinterpret_cast<Function>(dlsym(RTLD_NEXT, name));
}

}  // namespace

extern "C" int pthread_mutex_lock(pthread_mutex_t* mutex) noexcept {
  static const auto original = next<Scheduler::LockFunction>("pthread_mutex_lock");
  Scheduler* const scheduler = Scheduler::current();
  return scheduler == nullptr ? original(mutex) : scheduler->lock(mutex, original);
}

extern "C" int pthread_mutex_trylock(pthread_mutex_t* mutex) noexcept {
  static const auto original = next<Scheduler::LockFunction>("pthread_mutex_trylock");
  Scheduler* const scheduler = Scheduler::current();
  return scheduler == nullptr ? original(mutex) : scheduler->tryLock(mutex, original);
}

extern "C" int pthread_mutex_unlock(pthread_mutex_t* mutex) noexcept {
  static const auto original = next<Scheduler::LockFunction>("pthread_mutex_unlock");
  Scheduler* const scheduler = Scheduler::current();
  return scheduler == nullptr ? original(mutex) : scheduler->unlock(mutex, original);
}

extern "C" int pthread_create(pthread_t* thread, const pthread_attr_t* attributes, void* (*start)(void*),
                              void* argument) noexcept {
  static const auto original = next<Scheduler::CreateFunction>("pthread_create");
  Scheduler* const scheduler = Scheduler::current();
  return scheduler == nullptr ? original(thread, attributes, start, argument)
                              : scheduler->startThread(original, thread, start, argument);
}

extern "C" int pthread_join(pthread_t thread, void** result) {
  static const auto original = next<int (*)(pthread_t, void**)>("pthread_join");
  if (Scheduler* const scheduler = Scheduler::current()) {
    scheduler->waitForEnd(thread);
  }
  return original(thread, result);
}

// Only threads of a run wait for a condition.
extern "C" int pthread_cond_wait(pthread_cond_t* condition, pthread_mutex_t* mutex) {
  Scheduler* const scheduler = Scheduler::current();
  if (scheduler == nullptr) {
    return EINVAL;
  }
  scheduler->waitFor(condition, mutex);
  return 0;
}

extern "C" int pthread_cond_broadcast(pthread_cond_t* condition) noexcept {
  if (Scheduler* const scheduler = Scheduler::current()) {
    scheduler->notify(condition);
  }
  return 0;
}

extern "C" int nanosleep(const timespec* requested, timespec* remaining) {
  if (Scheduler* const scheduler = Scheduler::current()) {
    scheduler->sleep();
    return 0;
  }
  errno = clock_nanosleep(CLOCK_MONOTONIC, 0, requested, remaining);
  return errno == 0 ? 0 : -1;
}

// The log of a million failed set-ups is of no use to anyone.
extern "C" void syslog(int /*priority*/, const char* /*format*/, ...) {}
extern "C" void __syslog_chk(int /*priority*/, int /*flag*/, const char* /*format*/, ...) {}
