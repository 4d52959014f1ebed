// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#ifndef TARNVOD_COMMAND_APPLICATION_RUN_H
#define TARNVOD_COMMAND_APPLICATION_RUN_H

#include <schedule/observation.h>
#include <schedule/schedule.h>

#include <chrono>
#include <string>
#include <vector>

namespace tarn::command {

/** An application, and how it is run. */
struct ApplicationSettings {
  /** The program and its arguments. */
  std::vector<std::string> words;
  /** How many of its seconds pass in a real one. */
  double speed = 50;
  /** How long it may take to end after SIGTERM, in its own time. */
  vod::schedule::Time stopLimit{std::chrono::seconds(20)};
  /** Run by the shell at the end of the schedule, while the application still runs; empty for none. */
  std::string check;
};

/** What came of one run of an application. */
struct ApplicationRun {
  std::vector<vod::schedule::Observation> observations;
  /** Its exit code; negative for the number of the signal that ended it. */
  int exitCode = 0;
  /** Whether it has called the service, has executed the whole schedule, and has ended by itself. */
  bool hasBegun = false;
  bool isComplete = false;
  /** Whether it had to be killed: it did not end after SIGTERM, or not even the schedule came to its end. */
  bool wasKilled = false;
  bool checkFailed = false;
  /** The last of what it printed, on both outputs. */
  std::string output;
};

/**
 * Runs the application through a schedule, then ends it with SIGTERM. May be called on several threads at the same time.
 * Returns early, with the application killed, when the command has been asked to end.
 *
 * @throw Failure  when it cannot be started
 */
ApplicationRun runApplication(const ApplicationSettings& settings, const vod::schedule::Schedule& schedule);

}  // namespace tarn::command

#endif
