// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#ifndef TARNVOD_TESTS_ENDURANCE_INTERLEAVINGS_SCHEDULER_H
#define TARNVOD_TESTS_ENDURANCE_INTERLEAVINGS_SCHEDULER_H

#include "schedule.h"

#include <pthread.h>
#include <semaphore.h>

#include <cstddef>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

namespace tarn::test {

/** What the threads of a run do: the prologue comes first, then the actors, and the epilogue when these have ended. */
struct Script {
  std::function<void()> prologue;
  std::vector<std::function<void()>> actors;
  std::function<void()> epilogue;
};

/**
 * Runs threads one at a time and decides at each scheduling point which goes on, so that repeating the decisions repeats the
 * run. Scheduling points are the outermost lock and unlock of a mutex, a wait for a condition variable and its
 * notification, a sleep, the start and the join of a thread, and whatever calls `point`. The program's own `pthread_mutex_lock` and its kin (intercepted_functions.cpp) lead here.
 */
class Scheduler {
 public:
  /** Reports a run that cannot go on. Does not return. */
  using Failure = std::function<void(const std::string&)>;

  explicit Scheduler(Failure fail) : fail_(std::move(fail)) {}

  /** Runs a script to its end. A scheduler is used for one run. */
  void run(const Script& script, Schedule& schedule);

  /** Lets another thread go on, if the schedule wants it. Does nothing outside a run. */
  static void point();

  /** Lets the others go on until a condition holds. */
  static void waitUntil(const std::function<bool()>& condition);

  /** Sleeps, as `sleep` does, or until a condition holds. @return whether it holds */
  static bool sleepUntil(const std::function<bool()>& condition);

  /** A condition: the threads of the run have gone to sleep so often from now on. */
  static std::function<bool()> sleepsAgain(std::size_t times);

  /** The scheduler of the calling thread; null outside a run. */
  static Scheduler* current();

  using LockFunction = int (*)(pthread_mutex_t*);
  int lock(pthread_mutex_t* mutex, LockFunction original);
  int tryLock(pthread_mutex_t* mutex, LockFunction original);
  int unlock(pthread_mutex_t* mutex, LockFunction original);

  /** Releases a mutex until a condition variable has been notified. */
  void waitFor(const pthread_cond_t* condition, pthread_mutex_t* mutex);
  void notify(const pthread_cond_t* condition);

  using CreateFunction = int (*)(pthread_t*, const pthread_attr_t*, void* (*)(void*), void*);
  int startThread(CreateFunction original, pthread_t* thread, void* (*start)(void*), void* argument);
  void waitForEnd(pthread_t thread);
  void sleep();

 private:
  enum class Phase { Prologue, Actors, Epilogue };

  struct Actor {
    Scheduler* scheduler = nullptr;
    int id = 0;
    Phase phase = Phase::Prologue;
    std::function<void()> body;
    bool startedByLibrary = false;
    pthread_t thread{};
    sem_t turn{};
    bool ended = false;
    bool asleep = false;
    int wokenUp = 0;
    const std::function<bool()>* alarm = nullptr;  ///< what ends its sleep early
    const std::function<bool()>* condition = nullptr;
  };

  struct Ownership {
    const Actor* owner = nullptr;
    int depth = 0;
  };

  static void* runActor(void* argument);
  Actor& add(Phase phase, std::function<void()> body);
  int start(Actor& actor, CreateFunction create);
  bool canRun(const Actor& actor) const;
  std::vector<Actor*> enabledActors() const;
  Actor& next();
  void resume(Actor& actor);
  void end(Actor& actor);
  bool haveEnded(Phase phase) const;
  bool isFree(const pthread_mutex_t* mutex) const;
  int acquire(pthread_mutex_t* mutex, LockFunction original);

  static thread_local Actor* self;

  const Failure fail_;
  Schedule* schedule_ = nullptr;
  std::vector<std::unique_ptr<Actor>> actors_;
  std::map<const pthread_mutex_t*, Ownership> ownerships_;
  std::map<const pthread_cond_t*, unsigned> notifications_;
  Phase phase_ = Phase::Prologue;
  Actor* running_ = nullptr;
  std::size_t steps_ = 0;
  std::size_t decisions_ = 0;
  std::size_t sleeps_ = 0;
  sem_t finished_{};
};

}  // namespace tarn::test

#endif
