// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "lock.h"

#include <vod_host.h>

#include <algorithm>
#include <condition_variable>
#include <stdexcept>
#include <utility>
#include <vector>

namespace vod::host {

struct Gate::State {
  Mutex mutex;
  std::condition_variable changed;
  bool reached TARNVOD_GUARDED_BY(mutex) = false;
  bool open TARNVOD_GUARDED_BY(mutex) = false;
};

struct Gate::List {
  Mutex mutex;
  std::vector<std::weak_ptr<State>> gates TARNVOD_GUARDED_BY(mutex);

  static List& instance() {
    static auto& list = *new List;  // Never destroyed: threads may wait at a gate while the process ends.
    return list;
  }
};

Gate::Gate() : state_(std::make_shared<State>()) {
  List& list = List::instance();
  const Lock lock(list.mutex);
  auto& gates = list.gates;
  gates.erase(std::remove_if(gates.begin(), gates.end(), [](const auto& gate) { return gate.expired(); }), gates.end());
  gates.push_back(state_);
}

Gate::Gate(std::shared_ptr<State> state) : state_(std::move(state)) {}

void Gate::waitUntilReached() const {
  Lock lock(state_->mutex);
  if (!state_->changed.wait_for(lock.forWaiting(), waitTimeout,
                                [this]() TARNVOD_REQUIRES(state_->mutex) { return state_->reached; })) {
    throw std::runtime_error("timed out waiting for a call to reach the gate");
  }
}

void Gate::open() const {
  const Lock lock(state_->mutex);
  state_->open = true;
  state_->changed.notify_all();
}

void Gate::pass() const {
  Lock lock(state_->mutex);
  state_->reached = true;
  state_->changed.notify_all();
  if (!state_->changed.wait_for(lock.forWaiting(), waitTimeout,
                                [this]() TARNVOD_REQUIRES(state_->mutex) { return state_->open; })) {
    throw std::runtime_error("timed out waiting for the gate to open");
  }
}

void Gate::openAll() {
  List& list = List::instance();
  const Lock lock(list.mutex);
  for (const auto& entry : list.gates) {
    if (auto state = entry.lock()) {
      Gate(std::move(state)).open();
    }
  }
}

}  // namespace vod::host
