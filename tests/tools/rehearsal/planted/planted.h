// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#ifndef TARNVOD_TESTS_REHEARSAL_PLANTED_H
#define TARNVOD_TESTS_REHEARSAL_PLANTED_H

/**
 * @file
 * Applications with one mistake each, which a rehearsal has to find. Each of them defines these two functions, as the
 * tests that a rehearsal writes expect them.
 */

/** Sets the application's cameras up, and returns. */
void startApplication();

/** Ends them. */
void stopApplication();

#endif
