// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#ifndef TARNVOD_TESTS_ENDURANCE_SOAK_PROCESS_HOOKS_H
#define TARNVOD_TESTS_ENDURANCE_SOAK_PROCESS_HOOKS_H

#include <cstdint>

namespace tarn::test {

/** How much faster the library's sleeps pass: its shortest retry period is then 10 milliseconds. */
inline constexpr int timeFactor = 100;

/** Frames that the platform handed to the library on the calling thread. */
std::int64_t framesReceivedHere();

/** Lines that the library sent to the system log. */
std::int64_t logLines();

}  // namespace tarn::test

#endif
