// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

// The functions with which threads wait for each other, up to a time. All of them wait on the real monotonic clock; when its time is over,
// that of the fast clock may not be.

#include "fast_time.h"

#include <pthread.h>
#include <semaphore.h>

#include <cerrno>

using namespace tarn::rehearsal;

namespace {

bool isOver(clockid_t clock, const timespec& deadline) {
  return now(clock) >= toTime(deadline);
}

}  // namespace

TARNVOD_REPLACEMENT int pthread_cond_clockwait(pthread_cond_t* condition, pthread_mutex_t* mutex, clockid_t clock,
                                               const timespec* deadline) {
  static auto* const wait =
      original<int(pthread_cond_t*, pthread_mutex_t*, clockid_t, const timespec*)>("pthread_cond_clockwait");
  const timespec real = realDeadline(clock, *deadline);
  const int result = wait(condition, mutex, CLOCK_MONOTONIC, &real);
  // Not waited on for the rest, because a signal could have come in between: woken without a reason, the caller looks itself.
  return result == ETIMEDOUT && !isOver(clock, *deadline) ? 0 : result;
}

TARNVOD_REPLACEMENT int pthread_cond_timedwait(pthread_cond_t* condition, pthread_mutex_t* mutex,
                                               const timespec* deadline) {
  return pthread_cond_clockwait(condition, mutex, clockOf(*deadline), deadline);
}

TARNVOD_REPLACEMENT int pthread_mutex_clocklock(pthread_mutex_t* mutex, clockid_t clock,
                                                const timespec* deadline) noexcept {
  static auto* const lock = original<int(pthread_mutex_t*, clockid_t, const timespec*)>("pthread_mutex_clocklock");
  int result = 0;
  do {
    const timespec real = realDeadline(clock, *deadline);
    result = lock(mutex, CLOCK_MONOTONIC, &real);
  } while (result == ETIMEDOUT && !isOver(clock, *deadline));
  return result;
}

TARNVOD_REPLACEMENT int pthread_mutex_timedlock(pthread_mutex_t* mutex, const timespec* deadline) noexcept {
  return pthread_mutex_clocklock(mutex, CLOCK_REALTIME, deadline);
}

TARNVOD_REPLACEMENT int sem_clockwait(sem_t* semaphore, clockid_t clock, const timespec* deadline) {
  static auto* const wait = original<int(sem_t*, clockid_t, const timespec*)>("sem_clockwait");
  int result = 0;
  do {
    const timespec real = realDeadline(clock, *deadline);
    result = wait(semaphore, CLOCK_MONOTONIC, &real);
  } while (result != 0 && errno == ETIMEDOUT && !isOver(clock, *deadline));
  return result;
}

TARNVOD_REPLACEMENT int sem_timedwait(sem_t* semaphore, const timespec* deadline) {
  return sem_clockwait(semaphore, CLOCK_REALTIME, deadline);
}
