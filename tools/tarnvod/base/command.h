// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#ifndef TARNVOD_COMMAND_COMMAND_H
#define TARNVOD_COMMAND_COMMAND_H

#include <functional>

namespace CLI {
class App;
}

/** The subcommands. Each adds itself to the command line and, when it is the one chosen, leaves there what to run. */
namespace tarn::command {

/** Runs the chosen subcommand; returns its exit code or throws what `errors.h` holds. */
using Action = std::function<int()>;

void addInfo(CLI::App& app, Action& action);
void addWatch(CLI::App& app, Action& action);
void addRecord(CLI::App& app, Action& action);
void addInspect(CLI::App& app, Action& action);
void addRender(CLI::App& app, Action& action);
/** Only where the viewer was built. */
void addView(CLI::App& app, Action& action);

/** The whole command: parses, runs, tells failures on standard error in one line, returns the exit code. */
int run(int argc, const char* const* argv);

}  // namespace tarn::command

#endif
