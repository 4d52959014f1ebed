// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

// The functions with which threads wait for each other, up to a time. All of them wait on the real monotonic clock.

#include "fast_time.h"

#include <pthread.h>
#include <semaphore.h>

using namespace tarn::rehearsal;

TARNVOD_REPLACEMENT int pthread_cond_clockwait(pthread_cond_t* condition, pthread_mutex_t* mutex, clockid_t clock,
                                               const timespec* deadline) {
  static auto* const wait =
      original<int(pthread_cond_t*, pthread_mutex_t*, clockid_t, const timespec*)>("pthread_cond_clockwait");
  const timespec real = realDeadline(clock, *deadline);
  return wait(condition, mutex, CLOCK_MONOTONIC, &real);
}

TARNVOD_REPLACEMENT int pthread_cond_timedwait(pthread_cond_t* condition, pthread_mutex_t* mutex,
                                               const timespec* deadline) {
  return pthread_cond_clockwait(condition, mutex, clockOf(*deadline), deadline);
}

TARNVOD_REPLACEMENT int pthread_mutex_clocklock(pthread_mutex_t* mutex, clockid_t clock,
                                                const timespec* deadline) noexcept {
  static auto* const lock = original<int(pthread_mutex_t*, clockid_t, const timespec*)>("pthread_mutex_clocklock");
  const timespec real = realDeadline(clock, *deadline);
  return lock(mutex, CLOCK_MONOTONIC, &real);
}

TARNVOD_REPLACEMENT int pthread_mutex_timedlock(pthread_mutex_t* mutex, const timespec* deadline) noexcept {
  return pthread_mutex_clocklock(mutex, CLOCK_REALTIME, deadline);
}

TARNVOD_REPLACEMENT int sem_clockwait(sem_t* semaphore, clockid_t clock, const timespec* deadline) {
  static auto* const wait = original<int(sem_t*, clockid_t, const timespec*)>("sem_clockwait");
  const timespec real = realDeadline(clock, *deadline);
  return wait(semaphore, CLOCK_MONOTONIC, &real);
}

TARNVOD_REPLACEMENT int sem_timedwait(sem_t* semaphore, const timespec* deadline) {
  return sem_clockwait(semaphore, CLOCK_REALTIME, deadline);
}
