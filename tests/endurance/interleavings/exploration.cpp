// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "exploration.h"

#include "schedule.h"
#include "scheduler.h"

#include <signal.h>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <system_error>

namespace tarn::test {
namespace {

constexpr int failedStatus = 3;

/** What a process that runs schedules leaves for the one that started it, however it ends. */
struct Report {
  std::uint64_t systematic = 0;
  std::uint64_t random = 0;
  ScheduleName current;
  Options options;
  char failure[512] = {};
};

/** Memory that both processes see. */
class SharedReport {
 public:
  SharedReport() {
    void* const memory = mmap(nullptr, sizeof(Report), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
    if (memory == MAP_FAILED) {
      throw std::system_error(errno, std::generic_category(), "mmap");
    }
    report_ = new (memory) Report;
  }
  ~SharedReport() { munmap(report_, sizeof(Report)); }
  SharedReport(const SharedReport&) = delete;
  SharedReport& operator=(const SharedReport&) = delete;

  Report& operator*() const { return *report_; }
  Report* operator->() const { return report_; }

 private:
  Report* report_;
};

/** Runs a body in a process of its own. @return how it ended, as `waitpid` reports it */
int runInChild(const std::function<void()>& body) {
  const pid_t child = fork();
  if (child == -1) {
    throw std::system_error(errno, std::generic_category(), "fork");
  }
  if (child == 0) {
    body();
    _exit(EXIT_SUCCESS);
  }
  int status = 0;
  while (waitpid(child, &status, 0) == -1 && errno == EINTR) {
  }
  return status;
}

std::string describe(int status) {
  if (WIFSIGNALED(status)) {
    // NOLINTNEXTLINE(concurrency-mt-unsafe): this process has one thread
    return std::string("the process was ended by a signal: ") + strsignal(WTERMSIG(status));
  }
  return "the process ended with status " + std::to_string(WEXITSTATUS(status));
}

bool endedAs(Ending ending, int status) {
  return ending == Ending::Aborts ? WIFSIGNALED(status) && WTERMSIG(status) == SIGABRT
                                  : WIFEXITED(status) && WEXITSTATUS(status) == EXIT_SUCCESS;
}

void run(const World& world, const ScheduleName& name, Report& report) {
  report.current = name;
  const auto fail = [&report](const std::string& failure) {
    std::snprintf(report.failure, sizeof(report.failure), "%s", failure.c_str());
    _exit(failedStatus);
  };
  Scheduler scheduler(fail);
  if (name.isRandom) {
    RandomSchedule schedule(name.number);
    scheduler.run(world.script(fail), schedule);
  } else {
    DeviatingSchedule schedule(name.number, report.options);
    scheduler.run(world.script(fail), schedule);
  }
}

/** Runs a schedule; false when it failed and no other is to be run. */
using Run = std::function<bool(const ScheduleName&)>;

void runAll(std::size_t deviations, const Options& options, const Run& runOne) {
  AllSchedules all(deviations);
  while (const auto number = all.next()) {
    if (!runOne({false, *number})) {
      return;
    }
    all.ran(*number, options);
  }
}

void runRandom(const Plan& plan, const Run& runOne) {
  using Clock = std::chrono::steady_clock;
  const auto end = Clock::now() + plan.randomTime;
  for (std::uint64_t i = 0; i < plan.randomSchedules || Clock::now() < end; ++i) {
    if (!runOne({true, plan.seed + i})) {
      return;
    }
  }
}

void countAsRun(const ScheduleName& name, Report& report) {
  ++(name.isRandom ? report.random : report.systematic);
}

Outcome outcomeOf(const Report& report, Ending expected, int status) {
  Outcome outcome;
  outcome.systematic = report.systematic;
  outcome.random = report.random;
  outcome.failedSchedule = report.current;
  if (report.failure[0] != '\0') {
    outcome.failure = report.failure;
  } else if (!endedAs(expected, status)) {
    outcome.failure = describe(status);
  }
  return outcome;
}

/** What decides on the schedules calls `runOne` for each. */
using Schedules = std::function<void(const Options&, const Run& runOne)>;

/** A world whose threads all end can be run again and again in one process. */
Outcome runInOneProcess(const World& world, const Schedules& schedules) {
  const SharedReport report;
  const int status = runInChild([&] {
    schedules(report->options, [&](const ScheduleName& name) {
      run(world, name, *report);
      countAsRun(name, *report);
      return true;
    });
  });
  return outcomeOf(*report, Ending::Returns, status);
}

/** A world that ends its process needs one for each schedule. */
Outcome runInManyProcesses(const World& world, const Schedules& schedules) {
  const SharedReport report;
  Outcome outcome;
  schedules(report->options, [&](const ScheduleName& name) {
    const int status = runInChild([&] {
      if (world.ending == Ending::Aborts) {
        std::fclose(stderr);  // where each abort, which is expected here, would be reported
      }
      run(world, name, *report);
    });
    countAsRun(name, *report);
    outcome = outcomeOf(*report, world.ending, status);
    return !outcome.failure;
  });
  return outcome;
}

Outcome run(const World& world, const Schedules& schedules) {
  return world.ending == Ending::Returns ? runInOneProcess(world, schedules) : runInManyProcesses(world, schedules);
}

}  // namespace

Outcome explore(const World& world, const Plan& plan) {
  return run(world, [&plan](const Options& options, const Run& runOne) {
    bool goesOn = true;
    const Run runWhileWell = [&](const ScheduleName& name) { return goesOn = runOne(name); };
    runAll(plan.deviations, options, runWhileWell);
    if (goesOn) {
      runRandom(plan, runWhileWell);
    }
  });
}

Outcome replay(const World& world, const ScheduleName& name) {
  return run(world, [&name](const Options& /*options*/, const Run& runOne) { runOne(name); });
}

}  // namespace tarn::test
