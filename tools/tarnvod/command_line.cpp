// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "base/command.h"
#include "base/errors.h"
#include "base/output.h"
#include "base/stop_signal.h"
#include "base/text.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <clocale>
#include <csignal>
#include <exception>
#include <string>

namespace tarn::command {
namespace {

std::string onOneLine(std::string text) {
  std::replace(text.begin(), text.end(), '\n', ' ');
  return printable(text);
}

int complain(const std::string& problem, ExitCode code) {
  tellUser("tarnvod: " + onOneLine(problem));
  return code;
}

int complainOfUsage(const CLI::App& app, const std::string& problem) {
  const auto chosen = app.get_subcommands();
  const std::string command = chosen.empty() ? "tarnvod" : "tarnvod " + chosen.front()->get_name();
  return complain(problem + "; see '" + command + " --help'", usage);
}

void build(CLI::App& app, Action& action) {
  app.name("tarnvod");
  app.require_subcommand(1);
  app.set_version_flag("--version", "tarnvod " TARNVOD_VERSION);
  addInfo(app, action);
  addWatch(app, action);
  addRecord(app, action);
  addInspect(app, action);
  addRender(app, action);
#ifdef TARNVOD_WITH_VIEWER
  addView(app, action);
#endif
}

int parseAndRun(CLI::App& app, int argc, const char* const* argv) {
  Action action;
  build(app, action);
  try {
    app.parse(argc, argv);
  } catch (const CLI::CallForHelp&) {
    const auto chosen = app.get_subcommands();
    standardOutput().write((chosen.empty() ? app : *chosen.front()).help());
    return success;
  } catch (const CLI::CallForVersion& version) {
    standardOutput().write(std::string(version.what()) + "\n");
    return success;
  } catch (const CLI::ParseError& error) {
    const bool isUnknown = app.get_subcommands().empty() && argc > 1 && argv[1][0] != '-';
    return complainOfUsage(app, isUnknown ? "'" + std::string(argv[1]) + "' is no subcommand" : error.what());
  }
  return action();
}

}  // namespace

int run(int argc, const char* const* argv) {
  // Widths of characters in the tables; everything else stays as in the C locale.
  // NOLINTNEXTLINE(concurrency-mt-unsafe): there is no other thread yet
  static_cast<void>(std::setlocale(LC_CTYPE, "C.UTF-8"));
  // A closed pipe is told by write, which ends the command in order: cameras are torn down, files closed.
  static_cast<void>(std::signal(SIGPIPE, SIG_IGN));
  installStopSignals();

  CLI::App app("What a camera's video object detection service sees: shown, recorded, inspected, drawn.");
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
