// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

// How many frames one, two and eight cameras deliver at once, each on a thread of its own, and how long a frame holds
// the handler's lock. The numbers of threads take turns, and the best round of each counts, because other programs interfere.

#include "pipelines.h"

#include <dlfcn.h>
#include <pthread.h>
#include <vod_host.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <ctime>
#include <exception>
#include <iostream>
#include <map>
#include <mutex>
#include <thread>

namespace {

using Clock = std::chrono::steady_clock;
using tarn::VOD::bench::ProcessFrame;

std::atomic<bool> timesLock{false};
thread_local Clock::time_point lockedSince;
thread_local Clock::duration lockedFor;

using MutexFunction = int (*)(pthread_mutex_t*);

MutexFunction original(const char* name) {
  return reinterpret_cast<MutexFunction>(dlsym(RTLD_NEXT, name));
}

}  // namespace

// These two intercept the library's calls. A frame takes no other lock.
extern "C" int pthread_mutex_lock(pthread_mutex_t* mutex) noexcept {
  static const MutexFunction lock = original("pthread_mutex_lock");
  const int result = lock(mutex);
  if (timesLock.load(std::memory_order_relaxed)) {
    lockedSince = Clock::now();
  }
  return result;
}

extern "C" int pthread_mutex_unlock(pthread_mutex_t* mutex) noexcept {
  static const MutexFunction unlock = original("pthread_mutex_unlock");
  if (timesLock.load(std::memory_order_relaxed)) {
    lockedFor = Clock::now() - lockedSince;
  }
  return unlock(mutex);
}

namespace {

/** Frames per second of wall-clock time and of processor time. */
struct Rate {
  double perSecond = 0;
  double perProcessorSecond = 0;
};

double processorSeconds() {
  timespec time{};
  clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
  return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) * 1e-9;
}

Rate measure(const std::vector<ProcessFrame>& cameras, std::size_t count) {
  constexpr auto duration = std::chrono::milliseconds(200);
  std::atomic<bool> running{true};
  std::mutex mutex;
  double frames = 0;
  double seconds = 0;
  std::vector<std::thread> threads;
  const auto begin = Clock::now();
  for (std::size_t camera = 0; camera < count; ++camera) {
    threads.emplace_back([&, &processFrame = cameras[camera]] {
      long own = 0;
      for (; running.load(std::memory_order_relaxed); ++own) {
        processFrame();
      }
      const std::lock_guard<std::mutex> lock(mutex);
      frames += static_cast<double>(own);
      seconds += processorSeconds();
    });
  }
  std::this_thread::sleep_for(duration);
  running = false;
  for (std::thread& thread : threads) {
    thread.join();
  }
  return {frames / std::chrono::duration<double>(Clock::now() - begin).count(), frames / seconds};
}

void printScaling(const std::vector<ProcessFrame>& cameras) {
  constexpr int rounds = 25;
  std::map<std::size_t, Rate> best{{1, {}}, {2, {}}, {8, {}}};
  for (int round = 0; round < rounds; ++round) {
    for (auto& [count, rate] : best) {
      const Rate measured = measure(cameras, count);
      rate.perSecond = std::max(rate.perSecond, measured.perSecond);
      rate.perProcessorSecond = std::max(rate.perProcessorSecond, measured.perProcessorSecond);
    }
  }
  for (const auto& [count, rate] : best) {
    std::cout << "scaling " << count << ' ' << rate.perSecond << ' ' << rate.perSecond / best[1].perSecond << ' '
              << rate.perProcessorSecond / best[1].perProcessorSecond << '\n';
  }
}

/** The median, in nanoseconds; includes one clock reading. */
long lockHeld(const ProcessFrame& processFrame) {
  constexpr int frames = 20000;
  std::vector<Clock::duration> held;
  timesLock = true;
  for (int frame = 0; frame < frames; ++frame) {
    processFrame();
    held.push_back(lockedFor);
  }
  timesLock = false;
  std::nth_element(held.begin(), held.begin() + frames / 2, held.end());
  return static_cast<long>(std::chrono::nanoseconds(held[frames / 2]).count());
}

long clockCost() {
  const auto begin = Clock::now();
  constexpr int readings = 100000;
  for (int reading = 0; reading < readings; ++reading) {
    static_cast<void>(Clock::now());
  }
  return static_cast<long>(std::chrono::nanoseconds((Clock::now() - begin) / readings).count());
}

void run() {
  using namespace tarn::VOD::bench;
  const std::vector<Sample> all = samples();
  const Sample& twelve =
      *std::find_if(all.begin(), all.end(), [](const Sample& sample) { return sample.name == "12"; });
  std::vector<ProcessFrame> cameras;
  for (int camera = 1; camera <= 8; ++camera) {
    cameras.push_back(framePipeline(twelve, camera, 80));
  }
  printScaling(cameras);
  for (const int classes : {1, 80}) {
    std::cout << "lock " << classes << ' ' << lockHeld(framePipeline(twelve, 1, classes)) << '\n';
  }
  std::cout << "clock " << clockCost() << '\n';
}

}  // namespace

int main() {
  try {
    vod::host::reset();
    run();
  } catch (const std::exception& failure) {
    std::cerr << "thread_scaling: " << failure.what() << '\n';
    return 1;
  }
  return 0;
}
