// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#ifndef TARNVOD_REHEARSAL_PACE_H
#define TARNVOD_REHEARSAL_PACE_H

#include "fast_time.h"

namespace tarn::rehearsal {

/**
 * How much of the fast time has passed since the process began. It passes `speed()` times as fast as real time while all threads wait, and
 * a tenth of that, but not slower than real time, while one of them runs or waits for a processor or a disk: neither gets faster by a
 * faster clock, and on a machine that is busy with something else the application would seem to be slow. Never decreases. Thread-safe.
 */
Time passedTime();

}  // namespace tarn::rehearsal

#endif
