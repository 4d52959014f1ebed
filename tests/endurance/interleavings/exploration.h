// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#ifndef TARNVOD_TESTS_ENDURANCE_INTERLEAVINGS_EXPLORATION_H
#define TARNVOD_TESTS_ENDURANCE_INTERLEAVINGS_EXPLORATION_H

#include "worlds.h"

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>

namespace tarn::test {

/** Which schedules of a world to run. */
struct Plan {
  std::size_t deviations = 2;               ///< all schedules with at most so many deviations from the default order
  std::uint64_t randomSchedules = 0;        ///< random ones, after these
  std::chrono::milliseconds randomTime{0};  ///< random ones until this time has passed, instead of a number
  std::uint64_t seed = 1;                   ///< of the first random schedule; the others count on
};

/** Which schedule: one that deviates from the default order, or a random one. */
struct ScheduleName {
  bool isRandom = false;
  std::uint64_t number = 0;  ///< the seed, for a random one
};

struct Outcome {
  std::uint64_t systematic = 0;  ///< how many schedules were run of those with at most the plan's deviations
  std::uint64_t random = 0;      ///< how many random ones
  /** What went wrong, and in which schedule; nothing when all runs were as they should be. */
  std::optional<std::string> failure;
  ScheduleName failedSchedule;
};

/**
 * Runs the schedules of a plan up to the first that fails. They run in a process of their own, so that a crash or a deadlock
 * is a failure like any other.
 */
Outcome explore(const World& world, const Plan& plan);

/** Runs one schedule, likewise. */
Outcome replay(const World& world, const ScheduleName& name);

}  // namespace tarn::test

#endif
