// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#ifndef TARNVOD_COMMAND_COMMAND_LINE_H
#define TARNVOD_COMMAND_COMMAND_LINE_H

namespace tarn::command {

/** The whole command: parses, runs, reports failures on standard error in one line, returns the exit code. */
int run(int argc, const char* const* argv);

}  // namespace tarn::command

#endif
