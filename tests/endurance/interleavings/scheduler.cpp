// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "scheduler.h"

#include <algorithm>
#include <cerrno>
#include <exception>
#include <utility>

namespace tarn::test {
namespace {

/** A run of a small world has some hundred scheduling points; one that reaches this number does not end. */
constexpr std::size_t stepLimit = 20'000;

/** A thread wakes from its sleep so often while others can go on; after that only when none can. */
constexpr int earlyWakeUps = 2;

void wait(sem_t& semaphore) {
  while (sem_wait(&semaphore) == -1 && errno == EINTR) {
  }
}

}  // namespace

thread_local Scheduler::Actor* Scheduler::self = nullptr;

Scheduler* Scheduler::current() {
  return self == nullptr ? nullptr : self->scheduler;
}

void Scheduler::run(const Script& script, Schedule& schedule) {
  schedule_ = &schedule;
  sem_init(&finished_, 0, 0);
  add(Phase::Prologue, script.prologue);
  for (const auto& actor : script.actors) {
    add(Phase::Actors, actor);
  }
  add(Phase::Epilogue, script.epilogue);
  for (const auto& actor : actors_) {
    start(*actor, pthread_create);
  }
  running_ = actors_.front().get();
  sem_post(&running_->turn);
  wait(finished_);
  for (const auto& actor : actors_) {
    if (!actor->startedByLibrary) {
      pthread_join(actor->thread, nullptr);
    }
  }
}

void Scheduler::point() {
  if (self != nullptr) {
    self->scheduler->resume(self->scheduler->next());
  }
}

void Scheduler::waitUntil(const std::function<bool()>& condition) {
  self->condition = &condition;
  point();
  self->condition = nullptr;
}

std::function<bool()> Scheduler::sleepsAgain(std::size_t times) {
  Scheduler& scheduler = *self->scheduler;
  return [&scheduler, wanted = scheduler.sleeps_ + times] { return scheduler.sleeps_ >= wanted; };
}

int Scheduler::lock(pthread_mutex_t* mutex, LockFunction original) {
  const auto ownership = ownerships_.find(mutex);
  if (ownership == ownerships_.end() || ownership->second.owner != self) {
    waitUntil([this, mutex] { return isFree(mutex); });
  }
  return acquire(mutex, original);
}

int Scheduler::tryLock(pthread_mutex_t* mutex, LockFunction original) {
  point();
  const auto ownership = ownerships_.find(mutex);
  const bool isOwn = ownership != ownerships_.end() && ownership->second.owner == self;
  return isOwn || isFree(mutex) ? acquire(mutex, original) : EBUSY;
}

int Scheduler::unlock(pthread_mutex_t* mutex, LockFunction original) {
  const int result = original(mutex);
  const auto ownership = ownerships_.find(mutex);
  if (ownership != ownerships_.end() && --ownership->second.depth == 0) {
    ownerships_.erase(ownership);
    point();
  }
  return result;
}

void Scheduler::waitFor(const pthread_cond_t* condition, pthread_mutex_t* mutex) {
  const unsigned before = notifications_[condition];
  pthread_mutex_unlock(mutex);
  waitUntil([this, condition, before] { return notifications_[condition] != before; });
  pthread_mutex_lock(mutex);
}

void Scheduler::notify(const pthread_cond_t* condition) {
  ++notifications_[condition];
  point();
}

bool Scheduler::isFree(const pthread_mutex_t* mutex) const {
  return ownerships_.count(mutex) == 0;
}

int Scheduler::acquire(pthread_mutex_t* mutex, LockFunction original) {
  const int result = original(mutex);
  if (result == 0) {
    Ownership& ownership = ownerships_[mutex];
    ownership.owner = self;
    ++ownership.depth;
  }
  return result;
}

int Scheduler::startThread(CreateFunction original, pthread_t* thread, void* (*entry)(void*), void* argument) {
  Actor& actor = add(Phase::Actors, [entry, argument] { entry(argument); });
  actor.startedByLibrary = true;
  const int result = start(actor, original);
  *thread = actor.thread;
  point();
  return result;
}

void Scheduler::waitForEnd(pthread_t thread) {
  // The latest, as the system gives the identity of a joined thread to a new one.
  const auto joined = std::find_if(actors_.rbegin(), actors_.rend(),
                                   [thread](const auto& actor) { return pthread_equal(actor->thread, thread) != 0; });
  if (joined != actors_.rend()) {
    const Actor& actor = **joined;
    waitUntil([&actor] { return actor.ended; });
  }
}

void Scheduler::sleep() {
  sleepUntil([] { return false; });
}

bool Scheduler::sleepUntil(const std::function<bool()>& condition) {
  Actor& actor = *self;
  ++actor.scheduler->sleeps_;
  actor.asleep = true;
  actor.alarm = &condition;
  point();
  actor.asleep = false;
  actor.alarm = nullptr;
  const bool isEarly = condition();
  actor.wokenUp += isEarly ? 0 : 1;
  return isEarly;
}

Scheduler::Actor& Scheduler::add(Phase phase, std::function<void()> body) {
  auto actor = std::make_unique<Actor>();
  actor->scheduler = this;
  actor->id = static_cast<int>(actors_.size());
  actor->phase = phase;
  actor->body = std::move(body);
  sem_init(&actor->turn, 0, 0);
  actors_.push_back(std::move(actor));
  return *actors_.back();
}

int Scheduler::start(Actor& actor, CreateFunction create) {
  const int result = create(&actor.thread, nullptr, runActor, &actor);
  if (result != 0) {
    fail_("the system has no thread for this run");
  }
  return result;
}

void* Scheduler::runActor(void* argument) {
  Actor& actor = *static_cast<Actor*>(argument);
  wait(actor.turn);
  self = &actor;
  try {
    actor.body();
  } catch (const std::exception& error) {
    actor.scheduler->fail_(std::string("an exception left a thread: ") + error.what());
  }
  actor.scheduler->end(actor);
  return nullptr;
}

void Scheduler::end(Actor& actor) {
  actor.ended = true;
  self = nullptr;
  if (phase_ == Phase::Prologue && haveEnded(Phase::Prologue)) {
    phase_ = Phase::Actors;
  }
  const bool haveActorsEnded = std::all_of(actors_.begin(), actors_.end(), [](const auto& each) {
    return each->ended || each->startedByLibrary || each->phase == Phase::Epilogue;
  });
  if (phase_ == Phase::Actors && haveActorsEnded) {
    phase_ = Phase::Epilogue;
  }
  if (haveEnded(Phase::Epilogue)) {
    const bool isLeft = std::any_of(actors_.begin(), actors_.end(), [](const auto& each) { return !each->ended; });
    if (isLeft) {
      fail_("a thread of the library is left");
    }
    sem_post(&finished_);
    return;
  }
  running_ = &next();
  sem_post(&running_->turn);
}

bool Scheduler::haveEnded(Phase phase) const {
  return std::all_of(actors_.begin(), actors_.end(),
                     [phase](const auto& each) { return each->phase != phase || each->ended; });
}

bool Scheduler::canRun(const Actor& actor) const {
  return !actor.ended && actor.phase <= phase_ && (actor.condition == nullptr || (*actor.condition)());
}

std::vector<Scheduler::Actor*> Scheduler::enabledActors() const {
  std::vector<Actor*> enabled;
  std::vector<Actor*> sleeping;
  const auto consider = [&](Actor& actor) {
    if (canRun(actor)) {
      const bool isAlarmed = actor.alarm != nullptr && (*actor.alarm)();
      const bool sleepsOn = actor.asleep && !isAlarmed && actor.wokenUp >= earlyWakeUps;
      (sleepsOn ? sleeping : enabled).push_back(&actor);
    }
  };
  if (running_ != nullptr) {
    consider(*running_);
  }
  for (const auto& actor : actors_) {
    if (actor.get() != running_) {
      consider(*actor);
    }
  }
  return enabled.empty() ? sleeping : enabled;
}

Scheduler::Actor& Scheduler::next() {
  if (++steps_ > stepLimit) {
    fail_("the run does not end");
  }
  const std::vector<Actor*> enabled = enabledActors();
  if (enabled.empty()) {
    fail_("a deadlock: no thread can go on");
  }
  if (enabled.size() == 1) {
    return *enabled.front();
  }
  std::vector<int> ids(enabled.size());
  std::transform(enabled.begin(), enabled.end(), ids.begin(), [](const Actor* actor) { return actor->id; });
  return *enabled[schedule_->choose(decisions_++, ids)];
}

void Scheduler::resume(Actor& actor) {
  Actor& here = *self;
  if (&actor == &here) {
    return;
  }
  running_ = &actor;
  sem_post(&actor.turn);
  wait(here.turn);
}

}  // namespace tarn::test
