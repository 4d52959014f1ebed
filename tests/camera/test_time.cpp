// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "camera/test_time.h"

#include <algorithm>
#include <condition_variable>
#include <optional>
#include <stdexcept>

namespace tarn::test {
namespace {

struct Clock {
  std::mutex mutex;
  std::condition_variable changed;
  TestTime::Point now{std::chrono::hours(1)};
  std::optional<TestTime::Point> awaited;  ///< by the cameras' thread; none while it is at work, or is not there
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

TestTime::Point TestTime::now() {
  const std::lock_guard lock(clock().mutex);
  return clock().now;
}

TestTime::Duration TestTime::step(Duration duration) {
  std::unique_lock lock(clock().mutex);
  waitUntilSettled(clock(), lock);
  const Duration passed = std::min(duration, *clock().awaited - clock().now);
  clock().now += passed;
  clock().changed.notify_all();
  waitUntilSettled(clock(), lock);
  return duration - passed;
}

void TestTime::settle() {
  std::unique_lock lock(clock().mutex);
  waitUntilSettled(clock(), lock);
}

void TestTime::jump(Duration duration) {
  const std::lock_guard lock(clock().mutex);
  clock().now += duration;
  clock().changed.notify_all();
}

void TestTime::Condition::waitUntil(std::unique_lock<std::mutex>& lock, Point time) {
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

void TestTime::Condition::notify() {
  const std::lock_guard lock(clock().mutex);
  clock().isNotified = true;
  clock().changed.notify_all();
}

}  // namespace tarn::test
