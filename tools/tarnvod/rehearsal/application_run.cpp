// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "rehearsal/application_run.h"

#include "base/clock.h"
#include "base/errors.h"
#include "base/files.h"
#include "base/stop_signal.h"
#include "rehearsal/application_process.h"

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <unistd.h>

#include <array>
#include <optional>
#include <string_view>

namespace tarn::command {
namespace {

using namespace std::chrono_literals;
using vod::schedule::Observation;
using vod::schedule::Schedule;

constexpr std::size_t mostOutput = 256 * 1024;
constexpr std::size_t mostObservations = 100'000;
/** Real times, in addition to what a run takes by its schedule; long, because machines are slow. */
constexpr auto startLimit = 20s;
constexpr auto runSlack = 30s;
constexpr auto stopSlack = 2s;
constexpr auto checkLimit = 30s;
/** How much longer a run takes whose threads never wait: the application's time passes more slowly then. */
constexpr int greatestSlowdown = 10;

/** Reads what there is, without waiting. */
std::string readAvailable(int descriptor) {
  std::string text;
  std::array<char, 65536> buffer;
  ssize_t count = 0;
  while ((count = ::read(descriptor, buffer.data(), buffer.size())) > 0) {
    text.append(buffer.data(), static_cast<std::size_t>(count));
  }
  return text;
}

/** The reading end of the journal. */
class JournalPipe {
 public:
  explicit JournalPipe(const std::string& path)
      // Also for writing, so that it has no end while the application, or what it starts, opens and closes it.
      : descriptor_(::open(path.c_str(), O_RDWR | O_NONBLOCK | O_CLOEXEC)) {
    if (descriptor_ < 0) {
      throw Failure(path + ": cannot be opened");
    }
  }
  ~JournalPipe() { ::close(descriptor_); }
  JournalPipe(const JournalPipe&) = delete;
  JournalPipe& operator=(const JournalPipe&) = delete;

  int descriptor() const { return descriptor_; }

  std::vector<Observation> read() {
    unfinished_ += readAvailable(descriptor_);
    std::vector<Observation> observations;
    std::size_t begin = 0;
    for (std::size_t end = 0; (end = unfinished_.find('\n', begin)) != std::string::npos; begin = end + 1) {
      if (const auto read = vod::schedule::parseObservation(std::string_view(unfinished_).substr(begin, end - begin))) {
        observations.push_back(*read);
      }
    }
    unfinished_.erase(0, begin);
    return observations;
  }

 private:
  const int descriptor_;
  std::string unfinished_;
};

/** One application while it runs. */
class Running {
 public:
  Running(const ApplicationSettings& settings, const RunFolder& folder)
      : settings_(settings),
        journal_(folder.journal()),
        process_(settings.words, rehearsalEnvironment(folder, settings.speed)) {}

  ApplicationRun run(const Schedule& schedule) {
    const auto length = real(schedule.length) * schedule.rounds;
    waitFor([this] { return run_.hasBegun; }, startLimit);
    if (run_.hasBegun) {
      waitFor([this] { return run_.isComplete; }, greatestSlowdown * length + runSlack);
    }
    if (run_.isComplete && !process_.exitCode()) {
      stop();
    }
    conclude();
    return std::move(run_);
  }

 private:
  Clock::duration real(vod::schedule::Time time) const {
    return std::chrono::duration_cast<Clock::duration>(std::chrono::duration<double>(time) / settings_.speed);
  }

  /** Reads until the condition is true, the application has ended, or the time is over. */
  template <typename Condition>
  void waitFor(Condition condition, Clock::duration limit) {
    const auto deadline = Clock::now() + limit;
    while (!condition() && !process_.exitCode() && Clock::now() < deadline && !stopRequested()) {
      std::array<pollfd, 2> ends{{{journal_.descriptor(), POLLIN, 0}, {output_, POLLIN, 0}}};
      ::poll(ends.data(), ends.size(), 10);
      // At its end the output has nothing more to wait for.
      output_ = (ends[1].revents & POLLIN) == 0 && (ends[1].revents & POLLHUP) != 0 ? -1 : output_;
      read();
    }
  }

  void stop() {
    if (!settings_.check.empty()) {
      run_.checkFailed = !succeeds(settings_.check);
    }
    process_.signal(SIGTERM);
    const auto limit = heard_ + settings_.stopLimit;
    const auto earliest = Clock::now() + real(settings_.stopLimit) + stopSlack;
    waitFor([&] { return heard_ > limit && Clock::now() > earliest; },
            greatestSlowdown * real(settings_.stopLimit) + stopSlack);
  }

  bool succeeds(const std::string& check) const {
    ApplicationProcess shell({"/bin/sh", "-c", check}, currentEnvironment());
    const auto deadline = Clock::now() + checkLimit;
    while (!shell.exitCode() && Clock::now() < deadline && !stopRequested()) {
      ::poll(nullptr, 0, 5);
      readAvailable(shell.output());
    }
    return shell.exitCode() == 0;
  }

  void conclude() {
    run_.wasKilled = !process_.exitCode();
    process_.signal(SIGKILL);
    while (!process_.exitCode()) {
      ::poll(nullptr, 0, 1);
    }
    read();
    run_.exitCode = *process_.exitCode();
  }

  void read() {
    run_.output += readAvailable(process_.output());
    if (run_.output.size() > mostOutput) {
      run_.output.erase(0, run_.output.size() - mostOutput);
    }
    for (Observation& observation : journal_.read()) {
      add(std::move(observation));
    }
  }

  /** Only of the first process that calls the service: an application may start others that do. */
  void add(Observation observation) {
    if (!run_.hasBegun && observation.event == "begin") {
      run_.hasBegun = true;
      observed_ = observation.process;
    }
    if (observation.process != observed_) {
      return;
    }
    heard_ = observation.at;
    if (run_.observations.size() >= mostObservations) {
      return;
    }
    run_.isComplete = run_.isComplete || observation.event == "done";
    run_.observations.push_back(std::move(observation));
  }

  const ApplicationSettings& settings_;
  JournalPipe journal_;
  ApplicationProcess process_;
  int output_ = process_.output();
  int observed_ = 0;
  /** The application's time as of its last observation. */
  vod::schedule::Time heard_{0};
  ApplicationRun run_;
};

}  // namespace

ApplicationRun runApplication(const ApplicationSettings& settings, const Schedule& schedule) {
  const RunFolder folder;
  writeFile(folder.schedule(), toText(schedule));
  return Running(settings, folder).run(schedule);
}

}  // namespace tarn::command
