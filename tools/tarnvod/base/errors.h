// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#ifndef TARNVOD_COMMAND_ERRORS_H
#define TARNVOD_COMMAND_ERRORS_H

#include <stdexcept>

namespace tarn::command {

/** Exit codes of the command. */
enum ExitCode : int { success = 0, failure = 1, usage = 2 };

/** Something could not be done. The text is one line for the user: what, where, what to do about it. */
class Failure : public std::runtime_error {
  using std::runtime_error::runtime_error;
};

/** The arguments contradict each other or the thing that they name. */
class UsageError : public std::runtime_error {
  using std::runtime_error::runtime_error;
};

/** Nobody reads the output any more; the command ends as if it were done. */
struct OutputClosed {};

}  // namespace tarn::command

#endif
