// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "rehearsal/rehearsal.h"

#include "diagnostics.h"
#include "rehearsal/watch.h"
#include "service/service.h"

#include <signal.h>

#include <algorithm>
#include <condition_variable>
#include <fstream>
#include <iterator>
#include <mutex>
#include <stdexcept>
#include <thread>
#include <utility>

namespace vod::host {

namespace {

using namespace std::chrono_literals;
using ScheduledFault = schedule::Fault;
using schedule::Kind;

constexpr std::chrono::milliseconds sceneInterval = 100ms;
constexpr int scenesPerSecond = 10;
/** More scenes than these do not wait for a slow application: the service leaves out the rest. */
constexpr std::size_t mostWaitingScenes = 10'000;
constexpr std::streamsize largestSchedule = 4'000'000;
/** What a function returns that fails. */
constexpr int refused = 5;

std::string readText(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  std::string text(static_cast<std::size_t>(largestSchedule) + 1, '\0');
  file.read(text.data(), static_cast<std::streamsize>(text.size()));
  if (file.bad() || file.gcount() > largestSchedule || (!file.is_open())) {
    throw std::invalid_argument(path + ": no schedule of at most 4 MB can be read");
  }
  text.resize(static_cast<std::size_t>(file.gcount()));
  return text;
}

Function functionNamed(const std::string& wanted) {
  return *std::find_if(everyFunction.begin(), everyFunction.end(),
                       [&](Function function) { return name(function) == wanted; });
}

/** Threads that are started while this exists receive no signals. */
class SignalsBlocked {
 public:
  SignalsBlocked() {
    sigset_t all;
    static_cast<void>(sigfillset(&all));
    static_cast<void>(pthread_sigmask(SIG_SETMASK, &all, &before_));
  }
  ~SignalsBlocked() { static_cast<void>(pthread_sigmask(SIG_SETMASK, &before_, nullptr)); }
  SignalsBlocked(const SignalsBlocked&) = delete;
  SignalsBlocked& operator=(const SignalsBlocked&) = delete;

 private:
  sigset_t before_{};
};

}  // namespace

void Rehearsal::beginIfNamed() {
  static std::once_flag once;
  std::call_once(once, [] {
    try {
      beginNamed(readRehearsalFiles());
    } catch (const std::logic_error& error) {  // an invalid variable
      Service::instance().refuseConfiguration(error.what());
    } catch (const std::runtime_error& error) {
      Service::instance().refuseConfiguration(error.what());
    }
  });
}

void Rehearsal::beginNamed(const RehearsalFiles& files) {
  if (files.journal) {
    Watch::instance().writeTo(*files.journal);
  }
  if (!files.schedule) {
    return;
  }
  // Never destroyed: its thread runs until the process ends.
  static auto& rehearsal =
      *new Rehearsal(schedule::parse(readText(*files.schedule), *files.schedule), readEnvironment().folders());
  const SignalsBlocked blocked;  // The application's signals are handled by its own threads.
  std::thread([] { rehearsal.run(); }).detach();
}

Rehearsal::Rehearsal(schedule::Schedule schedule, const std::vector<std::string>& folders)
    : schedule_(std::move(schedule)), steps_(stepsOf(schedule_.faults)) {
  for (const std::string& folder : folders) {
    players_.emplace_back(folder);
    const int number = static_cast<int>(players_.size()) - 1;
    channel(number).detectorInformation(players_.back().detectorInformation());
    // An application that has asked for `configurationError` has its channels already; they would play their recordings.
    Service::instance().changeChannel(number, [](ChannelState& state) {
      state.folder.reset();
      state.stream.reset();
    });
  }
  Watch::instance().write("begin");
  // Before the call that started it does its work: what is wrong from the beginning is wrong for that call.
  while (nextStep_ < steps_.size() && steps_[nextStep_].at == schedule::Time(0)) {
    take(steps_[nextStep_++]);
  }
}

void Rehearsal::run() {
  for (int round = 1; round <= schedule_.rounds; ++round) {
    Watch::instance().forgetReceived();
    Watch::instance().write("round", {{"number", std::to_string(round)}});
    runRound(begin_ + schedule_.length * (round - 1));
    Watch::instance().mark(round);
    nextStep_ = 0;
  }
  Watch::instance().write("done");
  int scenes = 0;
  for (auto next = Clock::now();; next = std::max(next + sceneInterval, Clock::now())) {
    waitUntil(next);
    sendScenes(std::nullopt, 1);
    if (++scenes % scenesPerSecond == 0) {
      Watch::instance().write("time");  // How long the application takes to end is measured by its own clock.
    }
  }
}

void Rehearsal::runRound(Clock::time_point begin) {
  const auto end = begin + schedule_.length;
  auto nextScene = begin;
  while (nextStep_ < steps_.size() || nextScene < end) {
    const auto nextStep = nextStep_ < steps_.size() ? begin + steps_[nextStep_].at : end;
    waitUntil(std::min({nextStep, nextScene, end}));
    const auto now = Clock::now();
    if (nextStep_ < steps_.size() && nextStep <= now) {
      take(steps_[nextStep_++]);
    } else if (nextScene <= now) {
      sendScenes(std::nullopt, 1);
      // A thread that was delayed does not make up for what it missed.
      nextScene = std::max(nextScene + sceneInterval, now);
    }
  }
  waitUntil(end);
}

void Rehearsal::waitUntil(Clock::time_point time) {
  // Not `sleep_until`: tests of the library replace the function that it calls.
  std::mutex mutex;
  std::condition_variable never;
  std::unique_lock lock(mutex);
  never.wait_until(lock, time, [] { return false; });
}

void Rehearsal::take(const schedule::Step& step) {
  const ScheduledFault& fault = schedule_.faults[step.fault];
  Watch& watch = Watch::instance();
  watch.write(step.begins ? "fault" : "end", {{"number", std::to_string(step.fault)}});
  if (step.begins) {
    begin(fault, step.fault);
  } else {
    end(fault, step.fault);
  }
  watch.forgetReceived();
}

void Rehearsal::begin(const ScheduledFault& fault, std::size_t number) {
  switch (fault.kind) {
    case Kind::Down:
      return goDown(1);
    case Kind::Refuse:
    case Kind::Hang:
      return beginCallFault(fault, number);
    case Kind::Drop:
      for (const int channelNumber : channelsOf(fault)) {
        channel(channelNumber).dropSubscriptions();
      }
      return;
    case Kind::Burst:
      for (const int channelNumber : channelsOf(fault)) {
        sendScenes(channelNumber, fault.count);
      }
      return;
    case Kind::Silence:
    case Kind::Damage:
    case Kind::Empty:
    case Kind::Repeat:
    case Kind::Jump:
    case Kind::Lose:
    case Kind::Renumber:
    case Kind::Change:
      return change(fault, 1);
  }
}

void Rehearsal::end(const ScheduledFault& fault, std::size_t number) {
  if (fault.kind == Kind::Down) {
    goDown(-1);
  } else if (fault.kind == Kind::Refuse || fault.kind == Kind::Hang) {
    endCallFault(number);
  } else {
    change(fault, -1);
  }
}

void Rehearsal::goDown(int by) {
  down_ += by;
  if (down_ == 0) {
    bringServiceUp();
  } else {
    takeServiceDown();
  }
}

void Rehearsal::beginCallFault(const ScheduledFault& fault, std::size_t number) {
  Fault planned(functionNamed(fault.function));
  std::optional<Gate> gate;
  if (fault.kind == Kind::Hang) {
    planned.always().waitsAt(gate.emplace());
  } else if (fault.count > 0) {
    planned.onCall(fault.count).failsWith(refused);
  } else {
    planned.always().failsWith(refused);
  }
  callFaults_.insert_or_assign(number, CallFault{plan(planned), gate});
}

void Rehearsal::endCallFault(std::size_t number) {
  const auto found = callFaults_.extract(number);
  lift(found.mapped().planned);
  if (found.mapped().gate) {
    found.mapped().gate->open();
  }
}

void Rehearsal::change(const ScheduledFault& fault, int by) {
  for (const int number : channelsOf(fault)) {
    SceneFaults& faults = players_[static_cast<std::size_t>(number)].faults;
    faults.silent += fault.kind == Kind::Silence ? by : 0;
    faults.damaged += fault.kind == Kind::Damage ? by : 0;
    faults.empty += fault.kind == Kind::Empty ? by : 0;
    faults.repeating += fault.kind == Kind::Repeat ? by : 0;
    faults.renumbering += fault.kind == Kind::Renumber ? by : 0;
    faults.jump += fault.jump;
    if (fault.kind == Kind::Change) {
      ++faults.classChanges;
      restartDetector(number);
    } else if (fault.kind == Kind::Lose) {
      loseClass(number, fault.count, by > 0);
    }
  }
}

void Rehearsal::loseClass(int number, int place, bool isLost) {
  ScenePlayer& player = players_[static_cast<std::size_t>(number)];
  auto& lost = player.faults.lostClasses;
  const std::uint32_t id = player.classAt(place);
  if (isLost) {
    lost.insert(id);
  } else {
    lost.erase(lost.find(id));
  }
  restartDetector(number);
}

/** With other classes than before: its subscriptions end. */
void Rehearsal::restartDetector(int number) {
  channel(number).detectorInformation(players_[static_cast<std::size_t>(number)].detectorInformation());
  channel(number).dropSubscriptions();
}

void Rehearsal::sendScenes(const std::optional<int>& onlyTo, int count) {
  const auto now = std::chrono::duration_cast<std::chrono::microseconds>(Clock::now() - begin_);
  for (int number = 0; number < static_cast<int>(players_.size()); ++number) {
    ScenePlayer& player = players_[static_cast<std::size_t>(number)];
    // While nobody listens the detector stands still, so that its listeners miss the end of no object.
    if ((onlyTo && number != *onlyTo) || player.faults.silent > 0 || channel(number).subscriptions().empty()) {
      continue;
    }
    const std::size_t waiting = Service::instance().waitingTasks(number);
    const auto free = static_cast<int>(mostWaitingScenes - std::min(mostWaitingScenes, waiting));
    for (int i = 0; i < std::min(count, free); ++i) {
      channel(number).pushScene(player.next(now));
    }
  }
}

std::vector<int> Rehearsal::channelsOf(const ScheduledFault& fault) const {
  std::vector<int> numbers;
  for (int number = 0; number < static_cast<int>(players_.size()); ++number) {
    if (!fault.camera || *fault.camera == number + 1) {
      numbers.push_back(number);
    }
  }
  return numbers;
}

}  // namespace vod::host
