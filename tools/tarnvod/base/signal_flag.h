// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#ifndef TARNVOD_COMMAND_SIGNAL_FLAG_H
#define TARNVOD_COMMAND_SIGNAL_FLAG_H

#include <atomic>

namespace tarn::command {

/** What the handler of a signal may set; it runs on whichever thread the system chooses. */
using SignalFlag = std::atomic<bool>;
static_assert(SignalFlag::is_always_lock_free, "may be used in a signal handler");

}  // namespace tarn::command

#endif
