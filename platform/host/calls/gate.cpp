// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include <vod_host.h>

#include <algorithm>
#include <condition_variable>
#include <mutex>
#include <stdexcept>
#include <utility>
#include <vector>

namespace vod::host {

struct Gate::State {
  std::mutex mutex;
  std::condition_variable changed;
  // Guarded by mutex:
  bool reached = false;
  bool open = false;
};

struct Gate::List {
  std::mutex mutex;
  // Guarded by mutex:
  std::vector<std::weak_ptr<State>> gates;

  static List& instance() {
    static auto& list = *new List;  // Never destroyed: threads may still stand at a gate while the process ends.
    return list;
  }
};

Gate::Gate() : state_(std::make_shared<State>()) {
  List& list = List::instance();
  const std::lock_guard lock(list.mutex);
  auto& gates = list.gates;
  gates.erase(std::remove_if(gates.begin(), gates.end(), [](const auto& gate) { return gate.expired(); }), gates.end());
  gates.push_back(state_);
}

Gate::Gate(std::shared_ptr<State> state) : state_(std::move(state)) {}

void Gate::waitUntilReached() const {
  std::unique_lock lock(state_->mutex);
  if (!state_->changed.wait_for(lock, waitTimeout, [this] { return state_->reached; })) {
    throw std::runtime_error("no call has reached the gate");
  }
}

void Gate::open() const {
  const std::lock_guard lock(state_->mutex);
  state_->open = true;
  state_->changed.notify_all();
}

void Gate::pass() const {
  std::unique_lock lock(state_->mutex);
  state_->reached = true;
  state_->changed.notify_all();
  if (!state_->changed.wait_for(lock, waitTimeout, [this] { return state_->open; })) {
    throw std::runtime_error("nobody has opened the gate");
  }
}

void Gate::openAll() {
  List& list = List::instance();
  const std::lock_guard lock(list.mutex);
  for (const auto& entry : list.gates) {
    if (auto state = entry.lock()) {
      Gate(std::move(state)).open();
    }
  }
}

}  // namespace vod::host
