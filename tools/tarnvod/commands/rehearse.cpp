// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "base/errors.h"
#include "base/files.h"
#include "base/output.h"
#include "base/report.h"
#include "base/text.h"
#include "commands/subcommands.h"
#include "rehearsal/rehearsal.h"
#include "rehearsal/rehearsal_report.h"

#include <CLI/CLI.hpp>
#include <nlohmann/json.hpp>
#include <unistd.h>

#include <algorithm>
#include <cmath>
#include <memory>
#include <optional>
#include <regex>
#include <string>
#include <thread>

namespace tarn::command {
namespace {

struct RehearseOptions {
  RehearsalSettings settings;
  std::optional<std::uint64_t> onlyDay;
  std::string scheduleFile;
  std::string mustPrint;
  std::string mustNotPrint;
  double patience = 15;
  double callbackLimit = 2;
  double stopLimit = 20;
  std::string outputFolder;
  bool json = false;
};

vod::schedule::Time inMilliseconds(double seconds) {
  return vod::schedule::Time(std::llround(seconds * 1000));
}

std::optional<std::regex> expressionOf(const std::string& option, const std::string& text) {
  if (text.empty()) {
    return std::nullopt;
  }
  try {
    return std::regex(text);
  } catch (const std::regex_error&) {
    throw UsageError(option + ": '" + text + "' is not a regular expression");
  }
}

vod::schedule::Schedule readSchedule(const std::string& file) {
  try {
    return vod::schedule::parse(readFile(file, "a schedule"), file);
  } catch (const vod::schedule::ScheduleError& error) {
    throw Failure(error.what());
  }
}

RehearsalSettings settingsFrom(const RehearseOptions& options) {
  RehearsalSettings settings = options.settings;
  settings.patience = inMilliseconds(options.patience);
  settings.limits.callback = inMilliseconds(options.callbackLimit);
  settings.application.stopLimit = inMilliseconds(options.stopLimit);
  settings.limits.mustPrint = expressionOf("--must-print", options.mustPrint);
  settings.limits.mustNotPrint = expressionOf("--must-not-print", options.mustNotPrint);
  if (options.onlyDay) {
    settings.firstDay = *options.onlyDay;
    settings.days = 1;
  }
  if (!options.scheduleFile.empty()) {
    settings.schedule = readSchedule(options.scheduleFile);
  }
  return settings;
}

/** On a terminal only: the number of days that are done, in place. */
void showProgress(std::uint64_t done, std::uint64_t days) {
  if (::isatty(STDERR_FILENO) != 0) {
    Output(STDERR_FILENO)
        .write("\r\033[K" + (done < days ? "day " + std::to_string(done) + " of " + std::to_string(days) : ""));
  }
}

int rehearse(const RehearseOptions& options) {
  const RehearsalSettings settings = settingsFrom(options);
  const std::uint64_t days = settings.schedule ? 1 : settings.days;
  const RehearsalResult result = rehearse(settings, [days](std::uint64_t done) { showProgress(done, days); });
  if (options.json) {
    standardOutput().write(indented(toJson(settings, result)));
  } else {
    standardOutput().writeText(rehearsalText(settings, result));
  }
  if (!options.outputFolder.empty()) {
    for (const std::string& name : writeFailures(options.outputFolder, settings, result)) {
      printMessage("tarnvod: wrote " + name);
    }
  }
  if (!result.failures.empty()) {
    throw Failure(settings.application.words.front() + ": failed in " + counted(result.failures.size(), "way"));
  }
  return success;
}

void addDays(CLI::App& command, RehearseOptions& options) {
  auto& settings = options.settings;
  auto* const days = command.add_option("--days", settings.days, "How many days; default 100")
                         ->type_name("N")
                         ->check(CLI::Range(1, 1000000));
  command.add_flag("--until-failure", settings.untilFailure, "End with the first day that fails");
  command.add_option("--seed", settings.seed, "From which the days are drawn; default 1")->type_name("N");
  command.add_option("--day", options.onlyDay, "Only the day with this number")
      ->type_name("N")
      ->check(CLI::Range(1, 1000000000))
      ->excludes(days);
  command.add_option("--schedule", options.scheduleFile, "Faults from a file instead of days that are drawn")
      ->type_name("FILE")
      ->excludes(days)
      ->excludes("--seed")
      ->excludes("--day");
}

void addLimits(CLI::App& command, RehearseOptions& options) {
  auto& settings = options.settings;
  command.add_option("--speed", settings.application.speed, "How much faster the time passes; default 50")
      ->type_name("X")
      ->check(CLI::Range(1.0, 1000.0));
  command.add_option("--jobs", settings.jobs, "How many days run at the same time; default: one for each processor")
      ->type_name("N")
      ->check(CLI::Range(1, 64));
  command
      .add_option("--patience", options.patience,
                  "Within how many seconds after the last fault all cameras must be set up again; default 15")
      ->type_name("S")
      ->check(CLI::Range(11.0, 3600.0));
  command.add_option("--callback-limit", options.callbackLimit, "How many seconds a callback may take; default 2")
      ->type_name("S")
      ->check(CLI::Range(0.5, 3600.0));
  command.add_option("--stop-limit", options.stopLimit, "How many seconds the end may take after SIGTERM; default 20")
      ->type_name("S")
      ->check(CLI::Range(0.5, 3600.0));
}

}  // namespace

Action defineRehearse(CLI::App& command) {
  const auto options = std::make_shared<RehearseOptions>();
  options->settings.jobs = std::clamp(static_cast<int>(std::thread::hardware_concurrency()), 1, 64);
  command.add_option("application", options->settings.application.words, "The program and its arguments, after \"--\"")
      ->type_name("COMMAND")
      ->required();
  addDays(command, *options);
  addLimits(command, *options);
  command
      .add_option("--check", options->settings.application.check,
                  "A command of the shell that must succeed at the end of each day")
      ->type_name("COMMAND");
  command.add_option("--must-print", options->mustPrint, "What must match the application's output of each day")
      ->type_name("RE");
  command.add_option("--must-not-print", options->mustNotPrint, "What must not match it")->type_name("RE");
  command.add_option("--output", options->outputFolder, "Write a schedule and a test for each failure to this folder")
      ->type_name("DIR");
  command.add_flag("--json", options->json, "Print one JSON object");
  return [options] { return rehearse(*options); };
}

}  // namespace tarn::command
