// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

// The time from the platform's call to the application's callback, with eight cameras at 30 frames a second, each on a thread of its
// own: alone, and while another thread sets further cameras up, updates them and tears them down. Then how long each of these calls
// takes, and how long each holder keeps the handler's lock. Prints nanoseconds: count, median, 99th and 99.9th percentile, worst.

#include "pipelines.h"
#include "sample_scenes.h"

#include <dlfcn.h>
#include <pthread.h>
#include <tarnvod/handler.h>
#include <vod_host.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <chrono>
#include <exception>
#include <iostream>
#include <map>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

namespace {

using Clock = std::chrono::steady_clock;
using Durations = std::vector<Clock::duration>;
using namespace tarn::VOD::bench;
using tarn::VOD::Handler;

constexpr int servedCameras = 8;
constexpr int framesPerSecond = 30;

/** What the calling thread does at the moment; times under the lock are recorded where this is not null. */
thread_local Durations* heldBy = nullptr;
thread_local bool looksForLock = false;
std::atomic<pthread_mutex_t*> handlerLock{nullptr};

using MutexFunction = int (*)(pthread_mutex_t*);

MutexFunction original(const char* name) {
  return reinterpret_cast<MutexFunction>(dlsym(RTLD_NEXT, name));
}

thread_local int depth = 0;  // the lock is recursive
thread_local Clock::time_point lockedSince;

}  // namespace

// These two intercept the calls of the library and of the host platform. A frame takes only the handler's lock, which is how it is found.
extern "C" int pthread_mutex_lock(pthread_mutex_t* mutex) noexcept {
  static const MutexFunction lock = original("pthread_mutex_lock");
  const int result = lock(mutex);
  if (looksForLock) {
    handlerLock = mutex;
  }
  if (heldBy != nullptr && mutex == handlerLock.load(std::memory_order_relaxed) && depth++ == 0) {
    lockedSince = Clock::now();
  }
  return result;
}

extern "C" int pthread_mutex_unlock(pthread_mutex_t* mutex) noexcept {
  static const MutexFunction unlock = original("pthread_mutex_unlock");
  if (heldBy != nullptr && mutex == handlerLock.load(std::memory_order_relaxed) && --depth == 0) {
    heldBy->push_back(Clock::now() - lockedSince);
  }
  return unlock(mutex);
}

namespace {

/** When the platform called for the frame that this thread is delivering, and what was measured for it. */
thread_local Clock::time_point called;
thread_local Durations* latencies = nullptr;

struct CameraTimes {
  Durations latencies;
  Durations held;
};

void setUp(int camera, const std::set<std::string>& classes) {
  const auto arrive = [](std::unique_ptr<tarn::VOD::DetectionData> /*frame*/, int /*number*/) {
    if (latencies != nullptr) {
      latencies->push_back(Clock::now() - called);
    }
  };
  if (!Handler::setup(camera, arrive, classes)) {
    throw std::runtime_error("camera " + std::to_string(camera) + " cannot be set up");
  }
}

/** Delivers at 30 frames a second; cameras do not start in step. */
void deliver(int camera, const std::string& bytes, std::chrono::seconds duration, CameraTimes& times) {
  const vod::host::Registration service =
      vod::host::registration(vod::host::channel(camera - 1).subscriptions().front());
  constexpr auto period = std::chrono::nanoseconds(std::chrono::seconds(1)) / framesPerSecond;
  const auto frames = framesPerSecond * duration.count();
  times.latencies.reserve(static_cast<std::size_t>(frames));
  times.held.reserve(static_cast<std::size_t>(frames));
  latencies = &times.latencies;
  heldBy = &times.held;
  auto next = Clock::now() + period * camera / servedCameras;
  for (long frame = 0; frame < frames; ++frame, next += period) {
    std::this_thread::sleep_until(next);
    called = Clock::now();
    service.detection(reinterpret_cast<const std::uint8_t*>(bytes.data()), static_cast<std::int32_t>(bytes.size()),
                      service.userData);
  }
  heldBy = nullptr;
  latencies = nullptr;
}

/** What one kind of call takes, and what of it goes by with the lock held. */
struct CallTimes {
  Durations whole;
  Durations held;
};

template <typename Call>
void measure(CallTimes& times, const Call& call) {
  heldBy = &times.held;
  const auto begin = Clock::now();
  call();
  times.whole.push_back(Clock::now() - begin);
  heldBy = nullptr;
}

/** Sets cameras up, updates them and tears them down, a hundred times a second, until it is stopped. */
void changeOtherCameras(const std::atomic<bool>& stopped, std::map<std::string, CallTimes>& calls) {
  constexpr int otherCameras = 4;
  constexpr auto pause = std::chrono::milliseconds(10);
  const auto all = firstClasses(sampleDetector());
  const auto one = firstClasses(sampleDetector(), 1);
  for (int number = 0; !stopped; ++number) {
    const int camera = servedCameras + 1 + number % otherCameras;
    measure(calls["set-up"], [&] { setUp(camera, all); });
    measure(calls["update"], [&] { setUp(camera, one); });
    measure(calls["teardown"], [&] { Handler::teardown(camera); });
    std::this_thread::sleep_for(pause);
  }
}

void print(const std::string& name, Durations durations) {
  if (durations.empty()) {
    return;
  }
  std::sort(durations.begin(), durations.end());
  const auto at = [&durations](double share) {
    const auto place = static_cast<std::size_t>(share * static_cast<double>(durations.size() - 1));
    return std::chrono::nanoseconds(durations[place]).count();
  };
  std::cout << name << ' ' << durations.size() << ' ' << at(0.5) << ' ' << at(0.99) << ' ' << at(0.999) << ' ' << at(1)
            << '\n';
}

/** All cameras' frames together. */
void printFrames(const std::string& when, const std::array<CameraTimes, servedCameras>& cameras) {
  CameraTimes all;
  for (const CameraTimes& times : cameras) {
    all.latencies.insert(all.latencies.end(), times.latencies.begin(), times.latencies.end());
    all.held.insert(all.held.end(), times.held.begin(), times.held.end());
  }
  print("frame-" + when, all.latencies);
  print("held-by-frame-" + when, all.held);
}

void serveAll(std::chrono::seconds duration, std::array<CameraTimes, servedCameras>& times) {
  const std::string bytes = sampleScene(12).SerializeAsString();
  std::vector<std::thread> threads;
  for (int camera = 1; camera <= servedCameras; ++camera) {
    threads.emplace_back(
        [&, camera] { deliver(camera, bytes, duration, times[static_cast<std::size_t>(camera) - 1]); });
  }
  for (std::thread& thread : threads) {
    thread.join();
  }
}

void findLock(int camera) {
  const vod::host::Registration service =
      vod::host::registration(vod::host::channel(camera - 1).subscriptions().front());
  const std::uint8_t nothing = 0;
  looksForLock = true;
  service.detection(&nothing, 0, service.userData);
  looksForLock = false;
}

void run(std::chrono::seconds duration) {
  constexpr int cameras = 12;
  for (int channel = 0; channel < cameras; ++channel) {
    vod::host::channel(channel).detectorInformation(sampleDetector().SerializeAsString());
  }
  vod::host::recordCalls(false);
  for (int camera = 1; camera <= servedCameras; ++camera) {
    setUp(camera, firstClasses(sampleDetector()));
  }
  findLock(1);

  std::array<CameraTimes, servedCameras> alone;
  serveAll(duration, alone);
  printFrames("alone", alone);

  std::array<CameraTimes, servedCameras> amidChanges;
  std::atomic<bool> stopped{false};
  std::map<std::string, CallTimes> calls;
  std::thread changes([&] { changeOtherCameras(stopped, calls); });
  serveAll(duration, amidChanges);
  stopped = true;
  changes.join();
  printFrames("amid-changes", amidChanges);
  for (const auto& [name, times] : calls) {
    print(name, times.whole);
    print("held-by-" + name, times.held);
  }
}

}  // namespace

int main(int argc, char** argv) {
  try {
    vod::host::reset();
    run(std::chrono::seconds(argc > 1 ? std::stoi(argv[1]) : 1));
  } catch (const std::exception& failure) {
    std::cerr << argv[0] << ": " << failure.what() << '\n';
    return 1;
  }
  return 0;
}
