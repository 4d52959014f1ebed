// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#ifndef TARNVOD_COMMAND_CLOCK_H
#define TARNVOD_COMMAND_CLOCK_H

#include <chrono>

namespace tarn::command {

using Clock = std::chrono::steady_clock;

}  // namespace tarn::command

#endif
