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

/** The most that waits in a queue. */
struct QueueCapacity {
  std::size_t values;
  std::size_t bytes;  ///< of all values together; a larger one waits alone
};

/**
 * Hands values from the service's threads to the main thread.
 *
 * Bounded, so that a slow reader costs frames and not memory, however large the frames are. The service's thread waits for
 * `patience` at most, once: after a wait that timed out, values are dropped at once, and counted, until there is room.
 */
template <typename Value>
class BoundedQueue {
 public:
  explicit BoundedQueue(QueueCapacity capacity) : capacity_(capacity) {}

  /**
   * Adds a value, or drops it when the queue is full.
   *
   * @param bytes  the memory of the value
   * @return whether it was added
   */
  bool push(Value value, std::size_t bytes) {
    Lock lock(mutex_);
    const auto hasRoom = [&]() TARNVOD_REQUIRES(mutex_) {
      return waiting_.empty() || (waiting_.size() < capacity_.values && bytes_ + bytes <= capacity_.bytes);
    };
    if (!readerIsBehind_ && !room_.wait_for(lock.forWaiting(), patience, hasRoom)) {
      readerIsBehind_ = true;
    }
    if (!hasRoom()) {
      ++dropped_;
      return false;
    }
    readerIsBehind_ = false;
    waiting_.push_back({std::move(value), bytes});
    bytes_ += bytes;
    filled_.notify_one();
    return true;
  }

  /** Takes the oldest value; nothing if none came in time. */
  std::optional<Value> popWithin(std::chrono::milliseconds limit) {
    Lock lock(mutex_);
    if (!filled_.wait_for(lock.forWaiting(), limit, [this]() TARNVOD_REQUIRES(mutex_) { return !waiting_.empty(); })) {
      return std::nullopt;
    }
    std::optional<Value> value(std::move(waiting_.front().value));
    bytes_ -= waiting_.front().bytes;
    waiting_.pop_front();
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

  struct Waiting {
    Value value;
    std::size_t bytes;
  };

  const QueueCapacity capacity_;
  mutable Mutex mutex_;
  std::condition_variable filled_;
  std::condition_variable room_;
  std::deque<Waiting> waiting_ TARNVOD_GUARDED_BY(mutex_);
  std::size_t bytes_ TARNVOD_GUARDED_BY(mutex_) = 0;
  bool readerIsBehind_ TARNVOD_GUARDED_BY(mutex_) = false;
  std::uint64_t dropped_ TARNVOD_GUARDED_BY(mutex_) = 0;
};

}  // namespace tarn::command

#endif
