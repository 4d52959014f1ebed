// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "rehearsal/findings.h"

#include "base/text.h"
#include "rehearsal/camera_watch.h"
#include "rehearsal/resource_growth.h"

#include <signal.h>
#include <string.h>

#include <algorithm>
#include <array>
#include <iterator>
#include <utility>

namespace tarn::command {
namespace {

using namespace std::chrono_literals;
using vod::schedule::Fault;
using vod::schedule::Kind;
using vod::schedule::Observation;
using vod::schedule::Schedule;
using vod::schedule::Time;

/** In the order of the enumeration. */
constexpr std::array names = {"never-begins", "crash",       "ends",   "exit-code", "does-not-end",
                              "blind",        "class-lost",  "blocks", "storm",     "memory",
                              "threads",      "descriptors", "check",  "missing",   "forbidden"};

std::string seconds(Time time) {
  return fixed(std::chrono::duration<double>(time).count(), 1) + " s";
}

std::string signalName(int number) {
  const char* const name = ::sigabbrev_np(number);
  return name == nullptr ? "signal " + std::to_string(number) : std::string("SIG") + name;
}

/** Without its end. */
std::string lastLine(const std::string& text) {
  const std::size_t end = text.find_last_not_of('\n') + 1;
  const std::size_t begin = end == 0 ? 0 : text.rfind('\n', end - 1) + 1;  // also right when there is none before
  return text.substr(begin, end - begin);
}

/** Faults with a number in the journal, and when they began and ended. */
struct Span {
  Time begin{0};
  Time end = Time::max();
};

/** While a function of the platform does not return, it may hold up callbacks as well: that is the service's fault. */
std::vector<Span> spansOfHanging(const ApplicationRun& run, const Schedule& schedule) {
  std::vector<Span> spans;
  std::map<std::int64_t, std::size_t> open;
  for (const Observation& observation : run.observations) {
    const auto number = observation.number("number");
    const bool isFault = observation.event == "fault" || observation.event == "end";
    if (!isFault || static_cast<std::size_t>(number) >= schedule.faults.size() ||
        schedule.faults[static_cast<std::size_t>(number)].kind != Kind::Hang) {
      continue;
    }
    if (observation.event == "fault") {
      open[number] = spans.size();
      spans.push_back({observation.at, Time::max()});
    } else if (const auto found = open.find(number); found != open.end()) {
      spans[found->second].end = observation.at;
    }
  }
  return spans;
}

class Judge {
 public:
  Judge(const ApplicationRun& run, const Schedule& schedule, const Expectation& expectation,
        const AcceptedLimits& limits)
      : run_(run), schedule_(schedule), expectation_(expectation), limits_(limits) {}

  Judgement judge() {
    judgeEnd();
    judgeCameras();
    judgeCallbacks();
    judgeCalls();
    judgeResources();
    judgeOutput();
    return std::move(judgement_);
  }

 private:
  void find(FindingKind kind, const std::string& text) {
    const auto& findings = judgement_.findings;
    if (std::none_of(findings.begin(), findings.end(), [kind](const Finding& found) { return found.kind == kind; })) {
      judgement_.findings.push_back({kind, text});
    }
  }

  void judgeEnd() {
    const bool endsByItself = !run_.isComplete && !run_.wasKilled;
    const bool endsBySignal = run_.exitCode < 0 && !run_.wasKilled && (!run_.isComplete || run_.exitCode != -SIGTERM);
    if (endsBySignal) {
      find(FindingKind::Crash,
           "it is ended by " + signalName(-run_.exitCode) + (run_.isComplete ? " while it ends" : ""));
    } else if (!run_.hasBegun) {
      const std::string line = lastLine(run_.output);
      find(FindingKind::NeverBegins,
           "it does not call the service" + (line.empty() ? "" : ", and prints last \"" + printable(line) + "\","));
    } else if (endsByItself && !expectation_.endsByItself) {
      find(FindingKind::Ends, "it ends by itself, with exit code " + std::to_string(run_.exitCode));
    } else if (run_.wasKilled) {
      find(FindingKind::DoesNotEnd,
           run_.isComplete ? "it does not end after SIGTERM" : "it keeps the day from coming to its end");
    } else if (run_.isComplete && !expectation_.endsByItself && run_.exitCode != expectation_.exitCode) {
      find(FindingKind::ExitCode, "it ends with exit code " + std::to_string(run_.exitCode) + " after SIGTERM");
    }
  }

  void judgeCameras() {
    CameraWatch watch(schedule_, expectation_);
    for (const Observation& observation : run_.observations) {
      watch.take(observation);
      const auto blindness = observation.event == "mark" ? watch.blindness() : std::nullopt;
      if (blindness) {
        find(blindness->isSetUp ? FindingKind::ClassLost : FindingKind::Blind, blindness->text);
      }
    }
    judgement_.recoveries = watch.recoveries();
  }

  void judgeCallbacks() {
    const auto hanging = spansOfHanging(run_, schedule_);
    for (const Observation& observation : run_.observations) {
      const Time taken(observation.number("for"));
      const Time begin = observation.at - taken;
      const bool isService = std::any_of(hanging.begin(), hanging.end(), [&](const Span& span) {
        return begin <= span.end && span.begin <= observation.at;
      });
      if (observation.event == "blocked" && taken > limits_.callback && !isService) {
        find(FindingKind::Blocks, "a callback of camera " + observation.text("camera") +
                                      (observation.number("returned") == 1 ? " takes " : " has not returned after ") +
                                      seconds(taken));
      }
    }
  }

  void judgeCalls() {
    for (const Observation& observation : run_.observations) {
      const auto calls = observation.number("calls_per_second");
      if (observation.event == "mark" && calls > limits_.callsPerSecond) {
        find(FindingKind::Storm, "it calls the service " + std::to_string(calls) + " times in a second");
      }
    }
  }

  void judgeResources() {
    if (const auto growth = growthOf(run_, "heap", leastMemoryPerRound)) {
      find(FindingKind::Memory, "each round leaves " + byteSize(*growth) + " of memory behind");
    }
    if (const auto growth = growthOf(run_, "threads", 1)) {
      find(FindingKind::Threads, "each round leaves " + counted(*growth, "thread") + " behind");
    }
    if (const auto growth = growthOf(run_, "descriptors", 1)) {
      find(FindingKind::Descriptors, "each round leaves " + counted(*growth, "descriptor") + " behind");
    }
  }

  void judgeOutput() {
    if (run_.checkFailed) {
      find(FindingKind::Check, "the check failed");
    }
    if (limits_.mustPrint && !std::regex_search(run_.output, *limits_.mustPrint)) {
      find(FindingKind::Missing, "it did not print what it must print");
    }
    std::smatch match;
    if (limits_.mustNotPrint && std::regex_search(run_.output, match, *limits_.mustNotPrint)) {
      find(FindingKind::Forbidden, "it printed \"" + printable(match.str()) + '"');
    }
  }

  const ApplicationRun& run_;
  const Schedule& schedule_;
  const Expectation& expectation_;
  const AcceptedLimits& limits_;
  Judgement judgement_;
};

}  // namespace

const char* nameOf(FindingKind kind) {
  return names.at(static_cast<std::size_t>(kind));
}

bool needsConfirmation(FindingKind kind) {
  switch (kind) {
    case FindingKind::NeverBegins:
    case FindingKind::DoesNotEnd:
    case FindingKind::Blind:
    case FindingKind::ClassLost:
    case FindingKind::Blocks:
    case FindingKind::Storm:
    case FindingKind::Memory:
    case FindingKind::Threads:
    case FindingKind::Descriptors:
    case FindingKind::Missing:
      return true;
    default:
      return false;
  }
}

bool isGrowth(FindingKind kind) {
  return kind == FindingKind::Memory || kind == FindingKind::Threads || kind == FindingKind::Descriptors;
}

Expectation expectationFrom(const ApplicationRun& quietRun) {
  Expectation expectation;
  expectation.endsByItself = !quietRun.isComplete;
  expectation.exitCode = quietRun.exitCode;
  const Expectation nothing;
  const Schedule noFaults;
  CameraWatch watch(noFaults, nothing);
  bool isFirst = true;
  for (const Observation& observation : quietRun.observations) {
    watch.take(observation);
    if (observation.event != "mark") {
      continue;
    }
    auto cameras = watch.cameras();
    if (!std::exchange(isFirst, false)) {  // What is not received in each round is not expected.
      for (auto& [camera, classes] : cameras) {
        std::set<std::string> both;
        const std::set<std::string>& before = expectation.cameras[camera];
        std::set_intersection(before.begin(), before.end(), classes.begin(), classes.end(),
                              std::inserter(both, both.end()));
        classes = both;
      }
    }
    expectation.cameras = cameras;
  }
  return expectation;
}

Judgement judge(const ApplicationRun& run, const Schedule& schedule, const Expectation& expectation,
                const AcceptedLimits& limits) {
  return Judge(run, schedule, expectation, limits).judge();
}

}  // namespace tarn::command
