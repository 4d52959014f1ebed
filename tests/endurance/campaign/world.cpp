// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

// The beginning, the end and the comparisons; the steps are in world_steps.cpp and world_scenes.cpp.

#include "endurance/campaign/world.h"

#include "reference/scene_reference.h"

#include <tarnvod/video_object_detection.pb.h>
#include <vod_host.h>

#include <algorithm>
#include <sstream>

namespace tarn::test {

using VOD::Handler;
namespace host = vod::host;

namespace {

constexpr int mostCameras = 8;
constexpr std::size_t stepsShown = 15;

template <typename Items>
std::string listed(const Items& items) {
  std::ostringstream text;
  for (const auto& item : items) {
    text << "\n    " << item;
  }
  return text.str();
}

bool sameFrames(const std::vector<ExpectedFrame>& expected, const std::vector<ExpectedFrame>& arrived) {
  return std::equal(expected.begin(), expected.end(), arrived.begin(), arrived.end(),
                    [](const ExpectedFrame& left, const ExpectedFrame& right) {
                      return left.callback == right.callback && left.camera == right.camera &&
                             identical(left.frame, right.frame);
                    });
}

std::vector<std::string> described(const std::vector<ExpectedFrame>& frames) {
  std::vector<std::string> texts;
  for (const ExpectedFrame& frame : frames) {
    std::ostringstream text;
    text << "callback " << frame.callback << ", camera " << frame.camera << ": " << frame.frame;
    texts.push_back(text.str());
  }
  return texts;
}

}  // namespace

WorldSettings anySettings(const Choose& choose) {
  WorldSettings settings;
  settings.cameras = 1 + static_cast<int>(choose(mostCameras));
  settings.deleteWaitsForCallbacks = choose(2) == 0;
  settings.oneThreadForAll = choose(2) == 0;
  settings.sceneDuringSubscribe = choose(2) == 0;
  settings.teardownDuringDetection = choose(2) == 0;
  return settings;
}

std::string toString(const WorldSettings& settings) {
  return std::to_string(settings.cameras) + " cameras, delete " +
         (settings.deleteWaitsForCallbacks ? "waits" : "does not wait") + " for callbacks, " +
         (settings.oneThreadForAll ? "one thread for all channels" : "a thread for each channel") +
         (settings.sceneDuringSubscribe ? ", a scene during subscribe" : "") +
         (settings.teardownDuringDetection ? ", teardown on a thread of its own" : "");
}

World::World(const WorldSettings& settings) : settings_(settings) {
  host::reset();
  host::callbackThreads(settings.oneThreadForAll ? host::Threads::OneForAll : host::Threads::OnePerChannel);
  const auto [number, callback] = arrivals_.makeCallback();
  for (int camera = 1; camera <= settings.cameras; ++camera) {
    // A first life for each camera: whatever earlier worlds left of attribute names, and of a run of failures, is gone.
    const std::string detector = plainDetector(camera);
    host::channel(camera - 1).detectorInformation(detector);
    model_.setDetector(camera, detector);
    model_.setup(camera, number, {}, std::nullopt);
    model_.teardown(camera);
    Handler::setup(camera, callback, {});
    Handler::teardown(camera);
  }
  host::waitForCallbacks(settings.deleteWaitsForCallbacks);
  host::teardownDuringDetection(settings.teardownDuringDetection);
  host::catchCallbackExceptions(true);
  if (settings.sceneDuringSubscribe) {
    host::deliverDuringSubscribe(::VOD::Scene().SerializeAsString());
  }
  Handler::initialize(1);
  sleep_.waitUntilAsleep();
  done_.push_back("the beginning");
  check();
}

World::~World() {
  host::Gate::openAll();
  host::liftAllFaults();
  sleep_.releaseAll();
  Handler::deinitialize();
  for (int camera = 1; camera <= settings_.cameras + 1; ++camera) {
    Handler::teardown(camera);  // a pending one
    Handler::teardown(camera);  // the active one as well
  }
}

void World::end(const Choose& choose) {
  liftFaults();
  done_.push_back("the end");
  host::bringServiceUp();
  model_.bringServiceUp();
  teardown(settings_.cameras + 1);  // it has no channel and so never comes back
  check();
  // A camera whose classes are supported no longer fails once more, and is then retried without classes.
  for (int round = 0; round < 2; ++round) {
    retry();
    check();
  }
  if (!model_.pending().empty()) {
    disagree("a camera was not recovered");
  }
  for (int camera = 1; camera <= settings_.cameras; ++camera) {
    const std::string scene = anyScene(choose);
    expect(model_.sendScene(camera, scene));
    host::channel(camera - 1).pushScene(scene);
    host::drain();
    check();
    teardown(camera);
    check();
  }
  if (host::liveSubscribers() != 0) {
    disagree("a subscriber is left");
  }
}

void World::expect(const std::optional<ExpectedFrame>& frame) {
  if (frame) {
    expected_.push_back(*frame);
  }
}

void World::agree(bool agreed, const std::string& onWhat) {
  if (!agreed && disagreement_.empty()) {
    disagreement_ = onWhat;
  }
}

void World::liftFaults() {
  host::liftAllFaults();
  model_.liftFaults();
}

void World::check() {
  if (!disagreement_.empty()) {
    disagree("differs: " + disagreement_);
  }
  std::vector<std::string> expectedCalls = model_.takeCalls();
  std::vector<std::string> calls = host::journal();
  host::clearJournal();
  if (!callsAreOrdered_) {
    std::sort(expectedCalls.begin(), expectedCalls.end());
    std::sort(calls.begin(), calls.end());
    callsAreOrdered_ = true;
  }
  if (calls != expectedCalls) {
    disagree("the platform must have been asked" + listed(expectedCalls) + "\n  but was asked" + listed(calls));
  }
  const std::vector<LogLine> expectedLines = model_.takeLog();
  const std::vector<LogLine> lines = log_.takeLines();
  if (lines != expectedLines) {
    disagree("the log must say" + listed(expectedLines) + "\n  but says" + listed(lines));
  }
  const std::vector<ExpectedFrame> arrived = arrivals_.take();
  if (!sameFrames(expected_, arrived)) {
    disagree("the frames must be" + listed(described(expected_)) + "\n  but are" + listed(described(arrived)));
  }
  frames_ += static_cast<int>(arrived.size());
  expected_.clear();
  if (host::liveSubscribers() != static_cast<int>(model_.active().size())) {
    disagree(std::to_string(host::liveSubscribers()) + " subscribers live");
  }
  for (int camera = 1; camera <= settings_.cameras; ++camera) {
    const auto record = model_.active().find(camera);
    const std::vector<int> numbers =
        record != model_.active().end() ? std::vector<int>{record->second.subscriber} : std::vector<int>();
    if (host::channel(camera - 1).subscriptions() != numbers) {
      disagree("camera " + std::to_string(camera) + " has other subscriptions");
    }
  }
  if (host::callsWithBadHandles() != 0) {
    disagree("the platform was called with a handle that is none");
  }
  if (host::caughtCallbackExceptions() != expectedExceptions_) {
    disagree("the platform caught " + std::to_string(host::caughtCallbackExceptions()) + " exceptions");
  }
}

void World::disagree(const std::string& what) const {
  const std::size_t shown = std::min(stepsShown, done_.size());
  const std::vector<std::string> last(done_.end() - static_cast<std::ptrdiff_t>(shown), done_.end());
  throw Disagreement(toString(settings_) + "\n  after " + std::to_string(done_.size()) + " steps, the last of them" +
                     listed(last) + "\n  " + what);
}

}  // namespace tarn::test
