// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#ifndef TARNVOD_COMMAND_FINDINGS_H
#define TARNVOD_COMMAND_FINDINGS_H

#include "rehearsal/application_run.h"

#include <chrono>
#include <cstdint>
#include <map>
#include <optional>
#include <regex>
#include <set>
#include <string>
#include <vector>

namespace tarn::command {

/** What may be wrong with an application. */
enum class FindingKind {
  NeverBegins,  ///< it does not call the service
  Crash,        ///< a signal ended it
  Ends,         ///< it ended although it was not asked to, and does not on a quiet day
  ExitCode,     ///< after SIGTERM it ended with another exit code than on a quiet day
  DoesNotEnd,   ///< it did not end after SIGTERM
  Blind,        ///< a camera is not set up again
  ClassLost,    ///< a camera is set up again, but not with all its classes
  Blocks,       ///< a callback takes too long
  Storm,        ///< it calls the service far too often
  Memory,       ///< each round leaves memory behind
  Threads,      ///< each round leaves threads behind
  Descriptors,  ///< each round leaves descriptors behind
  Check,        ///< the user's command failed
  Missing,      ///< a line that must be printed is missing
  Forbidden,    ///< a line that must not be printed is there
};

/** The kind as the JSON has it: "blind". */
const char* nameOf(FindingKind kind);

/** Whether the machine's speed has an influence, so that a second, slower run has to show the same. */
bool needsConfirmation(FindingKind kind);

/** Whether it is seen in the growth from round to round. */
bool isGrowth(FindingKind kind);

struct Finding {
  FindingKind kind;
  /** For people, and without a full stop: "camera 1 is not set up again". */
  std::string text;
};

/** What is accepted. */
struct AcceptedLimits {
  /** How long a callback may take, in the application's time. */
  vod::schedule::Time callback{std::chrono::seconds(2)};
  /** How many calls of the service are not too many, in a second of the application's time. */
  std::int64_t callsPerSecond = 200;
  std::optional<std::regex> mustPrint;
  std::optional<std::regex> mustNotPrint;
};

/** What an application does on a quiet day: what is expected of it on all others. */
struct Expectation {
  bool endsByItself = false;
  int exitCode = 0;
  /** The cameras that it sets up, with the classes that it receives. */
  std::map<int, std::set<std::string>> cameras;
};

Expectation expectationFrom(const ApplicationRun& quietRun);

/** How long it took after a fault until all cameras were set up again and received their classes. */
struct Recovery {
  vod::schedule::Kind after;
  vod::schedule::Time time;
};

/** What is wrong, each kind once; and how long the recoveries took. */
struct Judgement {
  std::vector<Finding> findings;
  std::vector<Recovery> recoveries;
};

Judgement judge(const ApplicationRun& run, const vod::schedule::Schedule& schedule, const Expectation& expectation,
                const AcceptedLimits& limits);

}  // namespace tarn::command

#endif
