// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "rehearsal/rehearsal.h"

#include "base/clock.h"
#include "base/errors.h"
#include "base/lock.h"
#include "base/stop_signal.h"
#include "rehearsal/day.h"
#include "rehearsal/shrinking.h"

#include <algorithm>
#include <array>
#include <exception>
#include <map>
#include <thread>
#include <utility>

namespace tarn::command {
namespace {

using vod::schedule::Fault;
using vod::schedule::Schedule;

/** How much slower the runs are that confirm a finding, and the one that confirms it while its day is shrunk. */
constexpr std::array confirmationSlowdowns = {3.0, 10.0};
constexpr double shrinkingSlowdown = 3;
constexpr int mostShrinkingRuns = 60;

struct Day {
  std::uint64_t number = 0;
  Schedule schedule;
  Judgement judgement;
  bool isDone = false;
};

class Rehearsal {
 public:
  Rehearsal(const RehearsalSettings& settings, const std::function<void(std::uint64_t)>& progress)
      : settings_(settings), progress_(progress) {}

  RehearsalResult run() {
    const auto begin = Clock::now();
    rehearseQuietDay();
    if (result_.failures.empty()) {
      rehearseDays();
      shrinkFailures();
    }
    result_.seconds = std::chrono::duration<double>(Clock::now() - begin).count();
    return std::move(result_);
  }

 private:
  Judgement tryOut(const Schedule& schedule, double speed) const {
    ApplicationSettings application = settings_.application;
    application.speed = speed;
    const ApplicationRun run = runApplication(application, schedule);
    throwIfStopRequested();
    return judge(run, schedule, result_.expectation, settings_.limits);
  }

  /** What is wrong without any fault is wrong on every day. */
  void rehearseQuietDay() {
    Schedule schedule = quietDay(settings_.patience);
    const ApplicationRun run = runApplication(settings_.application, schedule);
    throwIfStopRequested();
    result_.expectation = expectationFrom(run);
    schedule.rounds = 1;
    for (Finding& finding : judge(run, schedule, result_.expectation, settings_.limits).findings) {
      result_.failures.push_back({std::move(finding), 0, schedule, 0, {0}, result_.expectation});
    }
  }

  Schedule scheduleOf(std::uint64_t day) const {
    return settings_.schedule ? *settings_.schedule : drawDay(settings_.seed, day, settings_.patience);
  }

  void rehearseDays() {
    days_.resize(settings_.schedule ? 1 : static_cast<std::size_t>(settings_.days));
    std::vector<std::thread> threads;
    for (int job = 0; job < settings_.jobs; ++job) {
      threads.emplace_back([this] { rehearseUntilNoneIsLeft(); });
    }
    for (std::thread& thread : threads) {
      thread.join();
    }
    rethrowError();
    for (const Day& day : days_) {
      if (day.isDone) {
        count(day);
      }
    }
  }

  void rehearseUntilNoneIsLeft() {
    try {
      while (Day* const day = takeDay()) {
        day->judgement = confirmed(tryOut(day->schedule, settings_.application.speed), day->schedule);
        conclude(*day);
      }
    } catch (...) {
      const Lock lock(mutex_);
      error_ = std::current_exception();
      taken_ = days_.size();
    }
  }

  void rethrowError() {
    const Lock lock(mutex_);
    if (error_) {
      std::rethrow_exception(error_);
    }
  }

  void conclude(Day& day) {
    const Lock lock(mutex_);
    day.isDone = true;
    if (settings_.untilFailure && !day.judgement.findings.empty()) {
      taken_ = days_.size();
    }
    progress_(++done_);
  }

  Day* takeDay() {
    const Lock lock(mutex_);
    if (taken_ == days_.size()) {
      return nullptr;
    }
    Day& day = days_[taken_];
    day.number = settings_.firstDay + taken_++;
    day.schedule = scheduleOf(day.number);
    return &day;
  }

  /** What grows from round to round does not depend on the machine's speed, but may have been a coincidence. */
  double confirmationSpeed(FindingKind kind, double slowdown) const {
    const double speed = settings_.application.speed;
    return isGrowth(kind) ? speed : std::max(1.0, speed / slowdown);
  }

  /** Without what slower runs do not show. */
  Judgement confirmed(Judgement judgement, const Schedule& schedule) {
    auto& findings = judgement.findings;
    std::map<double, Judgement> others;  // by speed
    const auto end = std::remove_if(findings.begin(), findings.end(), [&](const Finding& finding) {
      return needsConfirmation(finding.kind) &&
             std::any_of(confirmationSlowdowns.begin(), confirmationSlowdowns.end(), [&](double slowdown) {
               const double speed = confirmationSpeed(finding.kind, slowdown);
               if (others.count(speed) == 0) {
                 others[speed] = tryOut(schedule, speed);
               }
               return !has(others[speed], finding.kind);
             });
    });
    const Lock lock(mutex_);
    result_.unconfirmed += static_cast<std::uint64_t>(findings.end() - end);
    findings.erase(end, findings.end());
    return judgement;
  }

  static bool has(const Judgement& judgement, FindingKind kind) {
    return std::any_of(judgement.findings.begin(), judgement.findings.end(),
                       [kind](const Finding& finding) { return finding.kind == kind; });
  }

  void count(const Day& day) {
    ++result_.days;
    result_.survived += day.judgement.findings.empty() ? 1U : 0U;
    for (const Fault& fault : day.schedule.faults) {
      ++result_.faults[fault.kind];
    }
    result_.recoveries.insert(result_.recoveries.end(), day.judgement.recoveries.begin(),
                              day.judgement.recoveries.end());
    for (const Finding& finding : day.judgement.findings) {
      add(day, finding);
    }
  }

  void add(const Day& day, const Finding& finding) {
    auto& failures = result_.failures;
    const auto known = std::find_if(failures.begin(), failures.end(), [&](const ApplicationFailure& failure) {
      return failure.finding.kind == finding.kind;
    });
    if (known != failures.end()) {
      known->days.push_back(day.number);
    } else {
      failures.push_back(
          {finding, day.number, day.schedule, day.schedule.faults.size(), {day.number}, result_.expectation});
    }
  }

  void shrinkFailures() {
    for (ApplicationFailure& failure : result_.failures) {
      const FindingKind kind = failure.finding.kind;
      Schedule& schedule = failure.schedule;
      if (schedule.rounds > 1 && !isGrowth(kind) && fails(withFaults(schedule, schedule.faults, 1), kind)) {
        schedule.rounds = 1;
      }
      const auto fewest = shrink(
          schedule.faults,
          [&](const std::vector<Fault>& fewer) { return fails(withFaults(schedule, fewer, schedule.rounds), kind); },
          mostShrinkingRuns);
      schedule = withFaults(schedule, fewest, schedule.rounds);
    }
  }

  /** A schedule with other faults, which ends when all cameras must be set up again. */
  Schedule withFaults(const Schedule& schedule, const std::vector<Fault>& faults, int rounds) const {
    vod::schedule::Time lastEnd{0};
    for (const Fault& fault : faults) {
      lastEnd = std::max(lastEnd, fault.end());
    }
    return {rounds, std::min(schedule.length, lastEnd + settings_.patience), faults};
  }

  bool fails(const Schedule& schedule, FindingKind kind) const {
    return has(tryOut(schedule, settings_.application.speed), kind) &&
           (!needsConfirmation(kind) || has(tryOut(schedule, confirmationSpeed(kind, shrinkingSlowdown)), kind));
  }

  const RehearsalSettings& settings_;
  const std::function<void(std::uint64_t)>& progress_;
  RehearsalResult result_;
  Mutex mutex_;
  std::vector<Day> days_;
  std::size_t taken_ TARNVOD_GUARDED_BY(mutex_) = 0;
  std::uint64_t done_ TARNVOD_GUARDED_BY(mutex_) = 0;
  std::exception_ptr error_ TARNVOD_GUARDED_BY(mutex_);
};

}  // namespace

RehearsalResult rehearse(const RehearsalSettings& settings, const std::function<void(std::uint64_t)>& progress) {
  return Rehearsal(settings, progress).run();
}

}  // namespace tarn::command
