// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#ifndef TARNVOD_COMMAND_REHEARSAL_H
#define TARNVOD_COMMAND_REHEARSAL_H

#include "rehearsal/findings.h"

#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace tarn::command {

/** What is rehearsed, and how. */
struct RehearsalSettings {
  ApplicationSettings application;
  AcceptedLimits limits;
  std::uint64_t seed = 1;
  /** Days from `firstDay` on. */
  std::uint64_t firstDay = 1;
  std::uint64_t days = 100;
  /** Whether the first day that fails is the last. */
  bool untilFailure = false;
  /** Takes the place of the days that are drawn. */
  std::optional<vod::schedule::Schedule> schedule;
  vod::schedule::Time patience{std::chrono::seconds(15)};
  /** How many days are run at the same time. */
  int jobs = 2;
};

/** A kind of failure, as it was found on the first of its days. */
struct ApplicationFailure {
  Finding finding;
  /** 0 for the quiet day. */
  std::uint64_t day = 0;
  /** With the fewest faults that still fail. */
  vod::schedule::Schedule schedule;
  /** How many faults the day had. */
  std::size_t faultsOfDay = 0;
  /** All days with a finding of this kind. */
  std::vector<std::uint64_t> days;
  /** What the application does on a quiet day. */
  Expectation expectation;
};

struct RehearsalResult {
  std::uint64_t days = 0;
  std::uint64_t survived = 0;
  std::map<vod::schedule::Kind, std::uint64_t> faults;
  std::vector<ApplicationFailure> failures;
  std::vector<Recovery> recoveries;
  Expectation expectation;
  /** Findings that a slower run did not confirm: the machine was too slow. */
  std::uint64_t unconfirmed = 0;
  double seconds = 0;
};

/**
 * Runs a quiet day, then all days, confirms what may come from a slow machine, and shrinks one day of each kind of
 * failure.
 *
 * @param progress  called with the number of days that are done, one call at a time
 * @throw Failure  when the application cannot be started, or the command is asked to end
 */
RehearsalResult rehearse(const RehearsalSettings& settings, const std::function<void(std::uint64_t)>& progress);

}  // namespace tarn::command

#endif
