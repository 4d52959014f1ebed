// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#ifndef TARNVOD_TESTS_ENDURANCE_INTERLEAVINGS_SCHEDULE_H
#define TARNVOD_TESTS_ENDURANCE_INTERLEAVINGS_SCHEDULE_H

#include <array>
#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <random>
#include <vector>

namespace tarn::test {

/** The decisions of one run: which of the threads that can go on does so. */
class Schedule {
 public:
  virtual ~Schedule() = default;

  /**
   * @param decision  counted from 0 in each run
   * @param enabled   the identities of the threads that can go on: the one that ran last first, if it can, and then the
   *                  others in a fixed order; at least two
   * @return an index into `enabled`
   */
  virtual std::size_t choose(std::size_t decision, const std::vector<int>& enabled) = 0;
};

/** How many threads could go on at each decision of a run. */
struct Options {
  std::size_t count = 0;
  std::array<std::uint8_t, 4096> at{};
};

/**
 * The default order, in which the first thread that can go on does, but for a few deviations. The number of a schedule has
 * 16 bits for each of them: the decision, and the choice that is made there.
 */
class DeviatingSchedule : public Schedule {
 public:
  static constexpr std::size_t mostDeviations = 4;

  /** @param options  filled by the run */
  DeviatingSchedule(std::uint64_t number, Options& options) : number_(number), options_(options) { options_.count = 0; }

  std::size_t choose(std::size_t decision, const std::vector<int>& enabled) override;

 private:
  const std::uint64_t number_;
  Options& options_;
};

/** The numbers of all schedules with at most a number of deviations, each once. */
class AllSchedules {
 public:
  /** @param deviations  at most `DeviatingSchedule::mostDeviations` */
  explicit AllSchedules(std::size_t deviations) : limit_(deviations) {}

  /** The next schedule to run; nothing after the last. */
  std::optional<std::uint64_t> next();

  /** Takes note of the decisions that the run of a schedule had. */
  void ran(std::uint64_t number, const Options& options);

 private:
  const std::size_t limit_;
  std::vector<std::uint64_t> waiting_{0};
};

/** Threads go on by random priority, which changes at a few random decisions. */
class RandomSchedule : public Schedule {
 public:
  explicit RandomSchedule(std::uint64_t seed) : random_(seed) {}

  std::size_t choose(std::size_t decision, const std::vector<int>& enabled) override;

 private:
  std::uint32_t priorityOf(int actor);

  std::mt19937_64 random_;
  std::map<int, std::uint32_t> priorities_;
};

}  // namespace tarn::test

#endif
