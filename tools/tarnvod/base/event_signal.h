// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#ifndef TARNVOD_COMMAND_EVENT_SIGNAL_H
#define TARNVOD_COMMAND_EVENT_SIGNAL_H

namespace tarn::command {

/** From now on SIGUSR1 is an event, which `takeEventSignal` returns. */
void installEventSignal();

/** Whether SIGUSR1 came since the last call. */
bool takeEventSignal();

}  // namespace tarn::command

#endif
