// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#ifndef TARNVOD_COMMAND_SUBCOMMANDS_H
#define TARNVOD_COMMAND_SUBCOMMANDS_H

#include <functional>

namespace CLI {
class App;
}

/**
 * The subcommands, one source file each. A function here adds the subcommand's options to the command line and returns
 * what runs it; names and summaries are in the table of `command_line.cpp`.
 */
namespace tarn::command {

/** Runs a subcommand whose options have been parsed; returns the exit code or throws what `errors.h` declares. */
using Action = std::function<int()>;

Action defineInfo(CLI::App& command);
Action defineWatch(CLI::App& command);
Action defineRecord(CLI::App& command);
Action defineInspect(CLI::App& command);
Action defineExport(CLI::App& command);
Action defineCut(CLI::App& command);
Action defineMerge(CLI::App& command);
Action defineRepair(CLI::App& command);
Action defineCompare(CLI::App& command);
Action defineRender(CLI::App& command);
/** Only on the host platform. */
Action defineRehearse(CLI::App& command);
/** Only where the viewer was built. */
Action defineView(CLI::App& command);
/** Only where the fleet was built, like the next two. */
Action definePublish(CLI::App& command);
Action defineCollect(CLI::App& command);
Action defineAudit(CLI::App& command);

}  // namespace tarn::command

#endif
