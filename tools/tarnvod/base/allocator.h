// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#ifndef TARNVOD_COMMAND_ALLOCATOR_H
#define TARNVOD_COMMAND_ALLOCATOR_H

namespace tarn::command {

/**
 * Has all threads of this process allocate from the same memory. By default, glibc gives the first threads an arena each
 * and keeps the peak of each arena: a process in which many threads make what one thread frees grows with each burst.
 * For processes whose threads allocate seldom, and to be called before they start. Does nothing without glibc.
 */
void allocateFromOneArena();

}  // namespace tarn::command

#endif
