// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "command_line.h"

#include "base/errors.h"
#include "base/output.h"
#include "base/stop_signal.h"
#include "base/text.h"
#include "commands/subcommands.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <clocale>
#include <csignal>
#include <exception>
#include <map>
#include <string>
#include <vector>

namespace tarn::command {
namespace {

struct Subcommand {
  const char* name;
  const char* summary;
  /** Adds the options; returns what runs the subcommand. */
  Action (*define)(CLI::App& command);
};

/** In the order in which `--help` lists them. */
constexpr Subcommand subcommands[] = {
    {"info", "Print what the service and its detectors can do", defineInfo},
    {"watch", "Show what cameras see, live", defineWatch},
    {"record", "Record what a camera's service sends, byte for byte", defineRecord},
    {"inspect", "Summarize a recording and check it for damage", defineInspect},
    {"export", "Write a recording in a format that other tools read", defineExport},
    {"cut", "Take a part of a recording, byte for byte", defineCut},
    {"merge", "Join recordings of one camera, one after the other", defineMerge},
    {"repair", "Keep what can be read of a damaged recording, and list the damage", defineRepair},
    {"compare", "Report how a recording differs from a reference, class by class", defineCompare},
    {"render", "Draw the tracks of recordings, or one frame with its boxes, as SVG", defineRender},
#ifdef TARNVOD_HOST_PLATFORM
    {"rehearse", "Run an application through days on which the service fails", defineRehearse},
#endif
#ifdef TARNVOD_WITH_VIEWER
    {"view", "Show what cameras see, or a recording, in a browser", defineView},
#endif
#ifdef TARNVOD_WITH_FLEET
    {"publish", "Send what cameras see to a message broker", definePublish},
    {"collect", "Store what the cameras of a fleet send in a database", defineCollect},
    {"audit", "Account for every frame of a fleet: stored, dropped, missing, late", defineAudit},
#endif
};

using Actions = std::map<const CLI::App*, Action>;

std::string onOneLine(std::string text) {
  std::replace(text.begin(), text.end(), '\n', ' ');
  return printable(text);
}

int complain(const std::string& problem, ExitCode code) {
  printMessage("tarnvod: " + onOneLine(problem));
  return code;
}

int complainOfUsage(const CLI::App& app, const std::string& problem) {
  const auto chosen = app.get_subcommands();
  const std::string command = chosen.empty() ? "tarnvod" : "tarnvod " + chosen.front()->get_name();
  return complain(problem + "; see '" + command + " --help'", usage);
}

Actions addSubcommands(CLI::App& app) {
  Actions actions;
  for (const Subcommand& subcommand : subcommands) {
    CLI::App* const command = app.add_subcommand(subcommand.name, subcommand.summary);
    actions[command] = subcommand.define(*command);
  }
  return actions;
}

/** What is wrong with arguments that no subcommand takes; in the order in which they were given. */
std::string describeUnexpected(const CLI::App& app, const std::vector<std::string>& arguments) {
  const auto isOption = [](const std::string& argument) { return argument.size() > 1 && argument[0] == '-'; };
  const auto option = std::find_if(arguments.begin(), arguments.end(), isOption);
  if (app.get_subcommands().empty() && option != arguments.begin()) {
    return "unknown subcommand '" + arguments.front() + "'";
  }
  if (option != arguments.end()) {
    return "unknown option '" + *option + "'";
  }
  return std::string("unexpected argument") + (arguments.size() == 1 ? "" : "s") + " '" + joined(arguments, "', '") +
         "'";
}

/** A misspelt option is reported before what is missing without it. */
std::string describe(const CLI::App& app, const CLI::ParseError& error) {
  const auto unexpected = app.remaining(true);
  const bool isOfValue = error.get_exit_code() == static_cast<int>(CLI::ExitCodes::ValidationError) ||
                         error.get_exit_code() == static_cast<int>(CLI::ExitCodes::ConversionError);
  return unexpected.empty() || isOfValue ? error.what() : describeUnexpected(app, unexpected);
}

int parseAndRun(CLI::App& app, int argc, const char* const* argv) {
  app.name("tarnvod");
  app.require_subcommand(1);
  app.set_version_flag("--version", "tarnvod " TARNVOD_VERSION);
  const Actions actions = addSubcommands(app);
  try {
    app.parse(argc, argv);
  } catch (const CLI::CallForHelp&) {
    const auto chosen = app.get_subcommands();
    standardOutput().writeText(chosen.empty() ? app.help() : chosen.front()->help(app.get_name()));
    return success;
  } catch (const CLI::CallForVersion& version) {
    standardOutput().writeText(std::string(version.what()) + "\n");
    return success;
  } catch (const CLI::ParseError& error) {
    return complainOfUsage(app, describe(app, error));
  }
  return actions.at(app.get_subcommands().front())();
}

}  // namespace

int run(int argc, const char* const* argv) {
  // Widths of characters in the tables; everything else stays as in the C locale.
  // NOLINTNEXTLINE(concurrency-mt-unsafe): there is no other thread yet
  static_cast<void>(std::setlocale(LC_CTYPE, "C.UTF-8"));
  // A closed pipe is reported by write, which ends the command in order: cameras are torn down, files closed.
  static_cast<void>(std::signal(SIGPIPE, SIG_IGN));
  installStopSignals();

  CLI::App app("Show, record, inspect and draw what a camera's video object detection service sees.");
  try {
    return parseAndRun(app, argc, argv);
  } catch (const OutputClosed&) {
    return success;
  } catch (const UsageError& error) {
    return complainOfUsage(app, error.what());
  } catch (const std::exception& error) {
    return complain(error.what(), failure);
  }
}

}  // namespace tarn::command
