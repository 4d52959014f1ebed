// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#ifndef TARNVOD_EXPORT_H
#define TARNVOD_EXPORT_H

/** Marks what the shared library exports; all else of tarnvod's own code is hidden. */
#define TARNVOD_EXPORT __attribute__((visibility("default")))

#endif
