// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "endurance/campaign/concurrent_phase.h"

#include "endurance/campaign/world.h"

#include <tarnvod/video_object_detection.pb.h>
#include <vod_host.h>

#include <atomic>
#include <chrono>
#include <future>
#include <memory>
#include <random>
#include <thread>

namespace tarn::test {

namespace host = vod::host;
using VOD::Handler;

namespace {

constexpr int cameras = 4;
constexpr int lifetimesPerCamera = 20;

std::string ending(int camera) {
  return " of camera " + std::to_string(camera);
}

bool endsWith(const std::string& text, const std::string& end) {
  return text.size() >= end.size() && text.compare(text.size() - end.size(), end.size(), end) == 0;
}

bool isNamedFor(const VOD::DetectionData& frame, int camera) {
  const std::string end = ending(camera);
  for (const VOD::Data& detection : frame.detections) {
    if (!endsWith(detection.className, end)) {
      return false;
    }
    for (const VOD::Attribute& attribute : detection.attributes) {
      if (!endsWith(attribute.typeName, end) || (attribute.className && !endsWith(*attribute.className, end))) {
        return false;
      }
    }
  }
  return true;
}

struct Tally {
  std::atomic<int> frames = 0;
  std::atomic<int> misattributed = 0;
  std::atomic<int> late = 0;
};

/** From a set-up to the return of its teardown. */
struct Life {
  int camera;
  std::atomic<bool> sawFrame = false;
  std::atomic<bool> isOver = false;
};

template <typename Condition>
void waitUntil(Condition condition, const std::string& failure) {
  const auto deadline = std::chrono::steady_clock::now() + host::waitTimeout;
  while (!condition()) {
    if (std::chrono::steady_clock::now() > deadline) {
      throw Disagreement(failure);
    }
    std::this_thread::yield();
  }
}

VOD::DetectionCallback callbackOf(const std::shared_ptr<Life>& life, const std::shared_ptr<Tally>& tally) {
  return [life, tally](std::unique_ptr<VOD::DetectionData> frame, int camera) {
    ++tally->frames;
    life->sawFrame = true;
    if (camera != life->camera || !isNamedFor(*frame, camera)) {
      ++tally->misattributed;
    }
    // A frame may be on its way when its camera is torn down, but then teardown waits for it: the platform does.
    if (life->isOver) {
      ++tally->late;
    }
  };
}

const std::set<std::string>& classesOf(int camera) {
  static std::map<int, std::set<std::string>> classes = [] {
    std::map<int, std::set<std::string>> all;
    for (int number = 1; number <= cameras; ++number) {
      for (const auto& [name, id] : classIdsByName(parseDetector(plainDetector(number)))) {
        all[number].insert(name);
      }
    }
    return all;
  }();
  return classes.at(camera);
}

/**
 * Lifetimes of one camera, one after another, each ended by its own teardown once it has seen a frame: it does, however
 * often the camera is dropped meanwhile.
 */
void runLifetimes(int camera, const std::shared_ptr<Tally>& tally, std::uint32_t seed) {
  std::minstd_rand generator(seed);
  for (int i = 0; i < lifetimesPerCamera; ++i) {
    const auto life = std::make_shared<Life>();
    life->camera = camera;
    Handler::setup(camera, callbackOf(life, tally), classesOf(camera));
    if (generator() % 2 == 0) {
      Handler::setup(camera, callbackOf(life, tally), {});
    }
    Handler::getDetectorInformation(camera);
    waitUntil([&] { return life->sawFrame.load(); }, "camera " + std::to_string(camera) + " gets no frame");
    Handler::teardown(camera);
    Handler::teardown(camera);  // a failed update leaves a pending record in addition to the active one
    // One that was dropped while it was torn down may be on its way back: it is none of this life's frames that counts.
    life->isOver = true;
  }
}

void disturb(const std::vector<std::string>& scenes, std::uint32_t seed, const std::atomic<bool>& stopped) {
  std::minstd_rand generator(seed);
  while (!stopped) {
    const host::Channel channel = host::channel(static_cast<int>(generator() % cameras));
    for (const std::string& scene : scenes) {
      channel.pushScene(scene);
    }
    if (generator() % 3 == 0) {
      channel.dropSubscriptions();
    }
    Handler::getSupportedAttributes();
    host::drain();  // so that no more than this piles up
  }
}

/** Runs a task concurrently; what it throws comes out of the future. */
template <typename Task>
std::future<void> start(Task task) {
  return std::async(std::launch::async, std::move(task));
}

void waitUntilAllAreBack() {
  for (int camera = 1; camera <= cameras; ++camera) {
    waitUntil([camera] { return !host::channel(camera - 1).subscriptions().empty(); },
              "camera " + std::to_string(camera) + " did not come back with the service");
  }
}

}  // namespace

int everythingAtOnce(const Choose& choose) {
  SystemLog log;
  RetrySleep sleep;
  host::reset();
  host::recordCalls(false);
  for (int camera = 1; camera <= cameras; ++camera) {
    host::channel(camera - 1).detectorInformation(plainDetector(camera));
  }
  std::vector<std::string> scenes;
  for (int i = 0; i < 4; ++i) {
    scenes.push_back(anyScene(choose));
  }
  const auto tally = std::make_shared<Tally>();
  Handler::initialize(1);
  sleep.releaseAll();
  std::atomic<bool> stopped = false;
  std::vector<std::future<void>> disturbances;
  for (int i = 0; i < 2; ++i) {
    disturbances.push_back(start([&, seed = choose(1000) + 1] { disturb(scenes, seed, stopped); }));
  }
  std::vector<std::future<void>> cameraLifetimes;
  for (int camera = 1; camera <= cameras; ++camera) {
    cameraLifetimes.push_back(start([=, seed = choose(1000) + 1] { runLifetimes(camera, tally, seed); }));
  }
  for (const auto& task : cameraLifetimes) {
    task.wait();
  }
  stopped = true;
  for (auto* const tasks : {&disturbances, &cameraLifetimes}) {
    for (auto& task : *tasks) {
      task.get();
    }
  }
  host::drain();

  // Every camera is lost once more, with the service, and comes back when that does.
  for (int camera = 1; camera <= cameras; ++camera) {
    Handler::setup(camera, nullptr, classesOf(camera));
  }
  host::takeServiceDown();
  host::drain();
  host::bringServiceUp();
  waitUntilAllAreBack();
  Handler::deinitialize();
  for (int camera = 1; camera <= cameras; ++camera) {
    Handler::teardown(camera);
    Handler::teardown(camera);
  }
  if (tally->misattributed != 0 || tally->late != 0 || host::liveSubscribers() != 0) {
    throw Disagreement("while everything happened at once, " + std::to_string(tally->misattributed) +
                       " frames had names of another camera, " + std::to_string(tally->late) +
                       " came after the teardown of their camera, " + std::to_string(host::liveSubscribers()) +
                       " subscribers are left");
  }
  return tally->frames;
}

}  // namespace tarn::test
