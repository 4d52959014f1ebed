// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "camera/steered_time.h"

#include <algorithm>
#include <condition_variable>
#include <optional>
#include <stdexcept>

namespace tarn::test {
namespace {

struct Clock {
  std::mutex mutex;
  std::condition_variable changed;
  SteeredTime::Point now{std::chrono::hours(1)};
  std::optional<SteeredTime::Point> awaited;  ///< by the cameras' thread; none while it is at work, or is not there
  bool isNotified = false;

  bool isSettled() const { return awaited && !isNotified && *awaited > now; }
};

/** Never destroyed: the cameras' thread may wait until the process ends. */
Clock& clock() {
  static auto& instance = *new Clock;
  return instance;
}

void waitUntilSettled(Clock& clock, std::unique_lock<std::mutex>& lock) {
  if (!clock.changed.wait_for(lock, std::chrono::seconds(30), [&] { return clock.isSettled(); })) {
    throw std::runtime_error("the cameras' thread did not settle");
  }
}

}  // namespace

SteeredTime::Point SteeredTime::now() {
  const std::lock_guard lock(clock().mutex);
  return clock().now;
}

SteeredTime::Duration SteeredTime::step(Duration duration) {
  std::unique_lock lock(clock().mutex);
  waitUntilSettled(clock(), lock);
  const Duration passed = std::min(duration, *clock().awaited - clock().now);
  clock().now += passed;
  clock().changed.notify_all();
  waitUntilSettled(clock(), lock);
  return duration - passed;
}

void SteeredTime::settle() {
  std::unique_lock lock(clock().mutex);
  waitUntilSettled(clock(), lock);
}

void SteeredTime::jump(Duration duration) {
  const std::lock_guard lock(clock().mutex);
  clock().now += duration;
  clock().changed.notify_all();
}

void SteeredTime::Condition::waitUntil(std::unique_lock<std::mutex>& lock, Point time) {
  {
    std::unique_lock clockLock(clock().mutex);
    clock().awaited = time;
    clock().changed.notify_all();
    lock.unlock();
    clock().changed.wait(clockLock, [&] { return clock().isNotified || clock().now >= time; });
    clock().awaited.reset();
    clock().isNotified = false;
  }
  lock.lock();
}

void SteeredTime::Condition::notify() {
  const std::lock_guard lock(clock().mutex);
  clock().isNotified = true;
  clock().changed.notify_all();
}

}  // namespace tarn::test
