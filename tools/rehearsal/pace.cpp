// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "pace.h"

#include "busy_threads.h"

#include <pthread.h>
#include <sched.h>
#include <signal.h>

#include <algorithm>
#include <atomic>
#include <mutex>

namespace tarn::rehearsal {

namespace {

/** How often a thread of its own looks at the others: about every 200 ms of the fast time. */
Time period() {
  constexpr Time shortest = 1'000'000;
  constexpr Time longest = 10'000'000;
  return std::clamp(toReal(200'000'000), shortest, longest);
}

/** How long the pace of a look holds: the thread that looks may itself wait for a processor. */
Time longestValidity() {
  return period() * 5 / 4;
}

double slowest() {
  return std::max(1.0, speed() / 10);
}

/** The fast time as a function of the real one, which one thread changes and all read. */
class Pace {
 public:
  Time passed() const {
    while (true) {
      const unsigned version = version_;
      const Time now = isStable(version) ? at(realNow(CLOCK_MONOTONIC)) : 0;
      if (isStable(version) && version_ == version) {
        return now;
      }
      sched_yield();
    }
  }

  /** For the changing thread. */
  void change(double rate) {
    const std::lock_guard lock(changing_);
    ++version_;  // Who reads the clock from now on reads it once more.
    const Time real = realNow(CLOCK_MONOTONIC);
    fast_ = at(real);
    real_ = real;
    rate_ = rate;
    ++version_;
  }

  /** While a process is copied, nothing is changed: the copy has no thread that would come to the end of it. */
  std::mutex& changing() { return changing_; }

 private:
  static bool isStable(unsigned version) { return version % 2 == 0; }

  Time at(Time real) const {
    const Time span = real - real_;
    const Time valid = std::clamp(span, Time{0}, longestValidity());
    const Time rest = std::max(Time{0}, span - valid);
    return fast_ + static_cast<Time>(static_cast<double>(valid) * rate_ + static_cast<double>(rest) * slowest());
  }

  std::mutex changing_;
  std::atomic<unsigned> version_{0};
  std::atomic<Time> real_{realNow(CLOCK_MONOTONIC)};
  std::atomic<Time> fast_{0};
  std::atomic<double> rate_{speed()};
};

/** Never destroyed: threads may still run while the process ends. */
Pace& pace() {
  static auto& instance = *new Pace;
  return instance;
}

void* keepPace(void* /*unused*/) {
  static auto* const sleep = original<int(const timespec*, timespec*)>("nanosleep");
  const timespec span = toTimespec(period());
  while (true) {
    sleep(&span, nullptr);
    pace().change(isAnotherThreadBusy() ? slowest() : speed());
  }
}

/** On a thread that receives no signals. Without it, time passes slowly. */
void startThread() {
  sigset_t all;
  sigset_t before;
  sigfillset(&all);
  pthread_sigmask(SIG_SETMASK, &all, &before);
  pthread_t thread{};
  if (pthread_create(&thread, nullptr, keepPace, nullptr) == 0) {
    pthread_detach(thread);
  }
  pthread_sigmask(SIG_SETMASK, &before, nullptr);
}

/** A copy of the process begins with the thread that made it, and no other. */
void startThreadInCopies() {
  static_cast<void>(pthread_atfork([] { pace().changing().lock(); }, [] { pace().changing().unlock(); },
                                   [] {
                                     pace().changing().unlock();
                                     startThread();
                                   }));
}

__attribute__((constructor)) void start() {
  static_cast<void>(now(CLOCK_MONOTONIC));  // All clocks begin here.
  if (speed() > 1) {
    startThreadInCopies();
    startThread();
  }
}

}  // namespace

Time passedTime() {
  return pace().passed();
}

}  // namespace tarn::rehearsal
