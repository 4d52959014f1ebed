// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "calls/fault_plan.h"

#include <algorithm>
#include <condition_variable>
#include <limits>
#include <mutex>
#include <utility>

namespace vod::host {

Fault::Fault(Function function) : function_(function) {}

Fault& Fault::onCall(int call) {
  first_ = last_ = call;
  return *this;
}

Fault& Fault::fromCall(int call) {
  first_ = call;
  last_ = std::numeric_limits<int>::max();
  return *this;
}

Fault& Fault::failsWith(int code) {
  code_ = code;
  return *this;
}

Fault& Fault::isDelayedBy(std::chrono::milliseconds delay) {
  delay_ = delay;
  return *this;
}

Fault& Fault::runs(std::function<void()> action) {
  action_ = std::move(action);
  return *this;
}

Fault& Fault::waitsAt(Gate gate) {
  gate_ = std::move(gate);
  return *this;
}

Fault& Fault::bringsServiceUp() {
  bringsServiceUp_ = true;
  return *this;
}

namespace {

/** Does not call nanosleep, which the tests of the library replace. */
void pause(std::chrono::milliseconds time) {
  std::mutex mutex;
  std::condition_variable never;
  std::unique_lock lock(mutex);
  never.wait_for(lock, time, [] { return false; });
}

}  // namespace

int FaultPlan::add(const Fault& fault) {
  const Lock lock(mutex_);
  planned_.push_back({++lastNumber_, fault});
  return lastNumber_;
}

void FaultPlan::remove(int number) {
  const Lock lock(mutex_);
  planned_.erase(std::remove_if(planned_.begin(), planned_.end(),
                                [number](const Planned& planned) { return planned.number == number; }),
                 planned_.end());
}

void FaultPlan::clear() {
  const Lock lock(mutex_);
  planned_.clear();
}

std::optional<int> FaultPlan::apply(Function function, const std::function<void()>& bringServiceUp) {
  std::optional<int> code;
  for (const Fault& fault : countCall(function)) {
    if (fault.action_) {
      fault.action_();
    }
    if (fault.gate_) {
      fault.gate_->pass();
    }
    if (fault.delay_.count() > 0) {
      pause(fault.delay_);
    }
    if (fault.bringsServiceUp_) {
      bringServiceUp();
    }
    if (!code) {
      code = fault.code_;
    }
  }
  return code;
}

std::vector<Fault> FaultPlan::countCall(Function function) {
  const Lock lock(mutex_);
  std::vector<Fault> affecting;
  for (Planned& planned : planned_) {
    if (planned.fault.function_ != function) {
      continue;
    }
    ++planned.calls;
    if (planned.fault.first_ <= planned.calls && planned.calls <= planned.fault.last_) {
      affecting.push_back(planned.fault);
    }
  }
  return affecting;
}

}  // namespace vod::host
