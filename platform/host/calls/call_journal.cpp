// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "calls/call_journal.h"

#include <chrono>
#include <stdexcept>
#include <utility>

namespace vod::host {

std::uint64_t CallJournal::begin(const Call& call) {
  const Lock lock(mutex_);
  if (!recording_) {
    return 0;
  }
  calls_.push_back(call);
  ++changes_;
  changed_.notify_all();
  return firstNumber_ + calls_.size() - 1;
}

void CallJournal::end(std::uint64_t number, Call&& call) noexcept {
  const Lock lock(mutex_);
  if (number < firstNumber_) {
    return;
  }
  calls_[static_cast<std::size_t>(number - firstNumber_)] = std::move(call);
  ++changes_;
  changed_.notify_all();
}

void CallJournal::record(bool enabled) {
  const Lock lock(mutex_);
  recording_ = enabled;
}

bool CallJournal::isRecording() const {
  const Lock lock(mutex_);
  return recording_;
}

void CallJournal::clear() {
  const Lock lock(mutex_);
  firstNumber_ += calls_.size();
  calls_.clear();
  ++changes_;
  changed_.notify_all();
}

std::vector<Call> CallJournal::calls() const {
  const Lock lock(mutex_);
  return calls_;
}

void CallJournal::waitFor(const std::function<bool(const std::vector<Call>&)>& predicate) {
  const auto deadline = std::chrono::steady_clock::now() + waitTimeout;
  Lock lock(mutex_);
  while (true) {
    const std::uint64_t seen = changes_;
    const std::vector<Call> calls = calls_;
    // The predicate may call functions of the journal.
    lock.unlock();
    if (predicate(calls)) {
      return;
    }
    lock.lock();
    if (!changed_.wait_until(lock.forWaiting(), deadline,
                             [&]() TARNVOD_REQUIRES(mutex_) { return changes_ != seen; })) {
      throw std::runtime_error("timed out waiting for calls; the journal:\n" + lines(calls));
    }
  }
}

}  // namespace vod::host
