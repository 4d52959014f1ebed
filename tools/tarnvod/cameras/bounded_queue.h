// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#ifndef TARNVOD_COMMAND_BOUNDED_QUEUE_H
#define TARNVOD_COMMAND_BOUNDED_QUEUE_H

#include "base/lock.h"

#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <optional>
#include <utility>

namespace tarn::command {

/**
 * Hands values from the service's threads to the main thread.
 *
 * Bounded, so that a slow reader costs frames and not memory. The service's thread waits for
 * `patience` at most, once: after a wait that timed out, values are dropped at once, and counted, until there is room.
 */
template <typename Value>
class BoundedQueue {
 public:
  explicit BoundedQueue(std::size_t capacity) : capacity_(capacity) {}

  /** Adds a value, or drops it when there is no room. */
  void push(Value value) {
    Lock lock(mutex_);
    const auto hasRoom = [this]() TARNVOD_REQUIRES(mutex_) { return values_.size() < capacity_; };
    if (!readerIsBehind_ && !room_.wait_for(lock.forWaiting(), patience, hasRoom)) {
      readerIsBehind_ = true;
    }
    if (!hasRoom()) {
      ++dropped_;
      return;
    }
    readerIsBehind_ = false;
    values_.push_back(std::move(value));
    filled_.notify_one();
  }

  /** Takes the oldest value; nothing if none came in time. */
  std::optional<Value> popWithin(std::chrono::milliseconds limit) {
    Lock lock(mutex_);
    if (!filled_.wait_for(lock.forWaiting(), limit, [this]() TARNVOD_REQUIRES(mutex_) { return !values_.empty(); })) {
      return std::nullopt;
    }
    std::optional<Value> value(std::move(values_.front()));
    values_.pop_front();
    room_.notify_one();
    return value;
  }

  /** How many values were dropped. */
  std::uint64_t dropped() const {
    const Lock lock(mutex_);
    return dropped_;
  }

 private:
  static constexpr std::chrono::milliseconds patience{100};

  const std::size_t capacity_;
  mutable Mutex mutex_;
  std::condition_variable filled_;
  std::condition_variable room_;
  std::deque<Value> values_ TARNVOD_GUARDED_BY(mutex_);
  bool readerIsBehind_ TARNVOD_GUARDED_BY(mutex_) = false;
  std::uint64_t dropped_ TARNVOD_GUARDED_BY(mutex_) = 0;
};

}  // namespace tarn::command

#endif
