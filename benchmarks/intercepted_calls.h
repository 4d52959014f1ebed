// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

// A program that is linked with this file calls the C library's mutex functions and the service's functions through it, as do the library
// and the host platform. So it learns how long the handler's lock is held, and how much of that the service takes.

#ifndef TARNVOD_BENCHMARKS_INTERCEPTED_CALLS_H
#define TARNVOD_BENCHMARKS_INTERCEPTED_CALLS_H

#include <chrono>
#include <functional>
#include <vector>

namespace tarn::VOD::bench {

using Clock = std::chrono::steady_clock;
using Durations = std::vector<Clock::duration>;

/** How long a thread held the handler's lock, each time. */
struct Holds {
  Durations whole;
  Durations withoutService;  ///< less the time in functions of the service
};

/** Records each time that the calling thread holds the lock, until it is called with null. The holds must live until then. */
void recordHolds(Holds* holds);

/** Finds out which lock is the handler's. @param deliver  delivers a frame, which takes no other lock */
void findHandlerLock(const std::function<void()>& deliver);

/** How long the calling thread has been in functions of the service until now. */
Clock::duration timeInService();

/** When the service last called the library with a frame, on the calling thread; for subscriptions made by this program. */
Clock::time_point libraryCalledAt();

}  // namespace tarn::VOD::bench

#endif
