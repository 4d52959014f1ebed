// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

// The time from the service's call to the application's callback, with eight cameras at 30 frames a second, each on a thread of its
// own: alone, and while another thread sets further cameras up, updates them and tears them down. Then how long each of these calls
// takes, and how long each holder keeps the handler's lock; each time with the service's own time apart. Prints nanoseconds: count,
// median, 99th and 99.9th percentile, worst.

#include "intercepted_calls.h"
#include "pipelines.h"
#include "sample_scenes.h"

#include <tarnvod/handler.h>
#include <vod_host.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <chrono>
#include <exception>
#include <iostream>
#include <map>
#include <string>
#include <thread>
#include <vector>

namespace {

using namespace tarn::VOD::bench;
using tarn::VOD::Handler;

constexpr int servedCameras = 8;
constexpr int framesPerSecond = 30;

struct CameraTimes {
  Durations service;    ///< until it calls the library
  Durations latencies;  ///< from there to the application's callback
  Holds holds;
};

/** Of the frames that this thread delivers; those of others are not measured. */
thread_local CameraTimes* measured = nullptr;
thread_local Clock::time_point delivered;

void setUp(int camera, const std::set<std::string>& classes) {
  const auto arrive = [](std::unique_ptr<tarn::VOD::DetectionData> /*frame*/, int /*number*/) {
    if (measured != nullptr) {
      measured->latencies.push_back(Clock::now() - libraryCalledAt());
      measured->service.push_back(libraryCalledAt() - delivered);
    }
  };
  if (!Handler::setup(camera, arrive, classes)) {
    throw std::runtime_error("camera " + std::to_string(camera) + " cannot be set up");
  }
}

/** Delivers at 30 frames a second; cameras do not start in step. */
void deliver(int camera, const std::string& bytes, std::chrono::seconds duration, CameraTimes& times) {
  const vod::host::Channel channel = vod::host::channel(camera - 1);
  constexpr auto period = std::chrono::nanoseconds(std::chrono::seconds(1)) / framesPerSecond;
  const auto frames = framesPerSecond * duration.count();
  for (Durations* const list : {&times.service, &times.latencies, &times.holds.whole, &times.holds.withoutService}) {
    list->reserve(static_cast<std::size_t>(frames));
  }
  measured = &times;
  recordHolds(&times.holds);
  auto next = Clock::now() + period * camera / servedCameras;
  for (long frame = 0; frame < frames; ++frame, next += period) {
    std::this_thread::sleep_until(next);
    delivered = Clock::now();
    channel.deliverScene(bytes);
  }
  recordHolds(nullptr);
  measured = nullptr;
}

/** What one kind of call takes, and what of it goes by with the lock held. */
struct CallTimes {
  Durations whole;
  Durations withoutService;
  Holds holds;
};

template <typename Call>
void measure(CallTimes& times, const Call& call) {
  recordHolds(&times.holds);
  const auto serviceBefore = timeInService();
  const auto begin = Clock::now();
  call();
  const Clock::duration whole = Clock::now() - begin;
  times.whole.push_back(whole);
  times.withoutService.push_back(whole - (timeInService() - serviceBefore));
  recordHolds(nullptr);
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

void append(Durations& all, const Durations& some) {
  all.insert(all.end(), some.begin(), some.end());
}

/** All cameras' frames together. A frame does not call the service while it holds the lock. */
void printFrames(const std::string& when, const std::array<CameraTimes, servedCameras>& cameras) {
  CameraTimes all;
  for (const CameraTimes& times : cameras) {
    append(all.service, times.service);
    append(all.latencies, times.latencies);
    append(all.holds.whole, times.holds.whole);
  }
  print("service-before-frame-" + when, all.service);
  print("frame-" + when, all.latencies);
  print("held-by-frame-" + when, all.holds.whole);
}

void printCall(const std::string& name, const CallTimes& times) {
  print(name, times.whole);
  print(name + "-without-service", times.withoutService);
  print("held-by-" + name, times.holds.whole);
  print("held-by-" + name + "-without-service", times.holds.withoutService);
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

void run(std::chrono::seconds duration) {
  constexpr int cameras = 12;
  for (int channel = 0; channel < cameras; ++channel) {
    vod::host::channel(channel).detectorInformation(sampleDetector().SerializeAsString());
  }
  vod::host::recordCalls(false);
  for (int camera = 1; camera <= servedCameras; ++camera) {
    setUp(camera, firstClasses(sampleDetector()));
  }
  findHandlerLock([] {
    const auto service = vod::host::registration(vod::host::channel(0).subscriptions().front());
    const std::uint8_t nothing = 0;
    service.detection(&nothing, 0, service.userData);
  });

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
    printCall(name, times);
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
