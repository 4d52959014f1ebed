// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#ifndef TARNVOD_REHEARSAL_BUSY_THREADS_H
#define TARNVOD_REHEARSAL_BUSY_THREADS_H

namespace tarn::rehearsal {

/**
 * Whether a thread of this process, other than the one that calls, runs or waits for a processor or a disk; no if the system does not say.
 * Allocates no memory.
 */
bool isAnotherThreadBusy();

}  // namespace tarn::rehearsal

#endif
