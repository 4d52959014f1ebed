// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#ifndef TARNVOD_COMMAND_STOP_SIGNAL_H
#define TARNVOD_COMMAND_STOP_SIGNAL_H

namespace tarn::command {

/**
 * From now on the first SIGINT, SIGTERM or SIGHUP asks the command to end in order; the second ends the process at
 * once, should a service that does not answer hold the command up.
 */
void installStopSignals();

/** Whether the command has been asked to end. */
bool stopRequested();

/** For work whose result is useless before it is complete. @throw Failure  when the command has been asked to end */
void throwIfStopRequested();

}  // namespace tarn::command

#endif
