// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

// Prints how fast a clock runs while this program computes, and while it waits, and what a wait of two seconds takes while it computes.

#include <poll.h>
#include <sys/syscall.h>
#include <time.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <functional>
#include <iostream>
#include <mutex>
#include <thread>

namespace {

double seconds(const timespec& time) {
  return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) * 1e-9;
}

double realNow() {
  timespec time{};
  ::syscall(SYS_clock_gettime, CLOCK_MONOTONIC, &time);
  return seconds(time);
}

double fastNow() {
  timespec time{};
  ::clock_gettime(CLOCK_MONOTONIC, &time);
  return seconds(time);
}

double rateDuring(const std::function<void()>& work) {
  const double real = realNow();
  const double fast = fastNow();
  work();
  return (fastNow() - fast) / (realNow() - real);
}

void compute() {
  for (const double end = realNow() + 0.3; realNow() < end;) {
  }
}

/** On a machine that is busy with something else, time may pass slowly as well: of many waits, the fastest. */
double rateOfWaiting() {
  double best = 0;
  for (int i = 0; i < 100; ++i) {
    best = std::max(best, rateDuring([] { ::poll(nullptr, 0, 1000); }));
  }
  return best;
}

/** While another thread computes. */
double timeOf(const std::function<void()>& wait) {
  std::atomic<bool> isOver{false};
  std::thread thread([&isOver] {
    while (!isOver) {
    }
  });
  const double begin = fastNow();
  wait();
  const double taken = fastNow() - begin;
  isOver = true;
  thread.join();
  return taken;
}

void waitForNothing() {
  std::mutex mutex;
  std::condition_variable never;
  std::unique_lock lock(mutex);
  never.wait_for(lock, std::chrono::seconds(2), [] { return false; });
}

}  // namespace

int main() {
  std::cout << "{\"computing\": " << rateDuring(compute) << ", \"waiting\": " << rateOfWaiting()
            << ", \"sleep\": " << timeOf([] { std::this_thread::sleep_for(std::chrono::seconds(2)); })
            << ", \"poll\": " << timeOf([] { ::poll(nullptr, 0, 2000); })
            << ", \"condition\": " << timeOf(waitForNothing) << "}\n";
}
