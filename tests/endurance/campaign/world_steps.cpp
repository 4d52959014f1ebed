// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

// What can happen in a world, each done to the library and to the model; the scenes are in world_scenes.cpp.

#include "endurance/campaign/world.h"

#include <tarnvod/video_object_detection.pb.h>
#include <vod_host.h>

#include <array>

namespace tarn::test {

namespace host = vod::host;
using host::Function;
using VOD::Handler;

namespace {

const std::array<VOD::VodChannelConfiguration, 3> regions = {
    {{0.0F, 0.0F, 1.0F, 1.0F}, {0.25F, 0.25F, 0.75F, 0.75F}, {0.1F, 0.2F, 0.9F, 0.8F}}};

Region anyRegion(const Choose& choose) {
  return choose(3) == 0 ? Region(regions[choose(regions.size())]) : std::nullopt;
}

std::set<std::string> anyClasses(const Choose& choose, const std::string& detector) {
  std::set<std::string> classes;
  for (const auto& [name, id] : classIdsByName(parseDetector(detector))) {
    if (choose(2) == 0) {
      classes.insert(name);
    }
  }
  if (choose(12) == 0) {
    classes.insert("unheard of");
  }
  return classes;
}

}  // namespace

const std::vector<World::StepKind>& World::stepKinds() {
  static const std::vector<StepKind> kinds = {
      {6, "set up", false, [](World& w, const Choose& c) { w.setup(c, w.anyCamera(c)); }},
      {2, "tear down", false, [](World& w, const Choose& c) { w.teardown(w.anyCamera(c)); }},
      {9, "drop", true, [](World& w, const Choose& c) { w.drop(c); }},
      {9, "retry", false, [](World& w, const Choose&) { w.retry(); }},
      {8, "send a scene", false, [](World& w, const Choose& c) { w.sendScene(c); }},
      {2, "send odd bytes", true, [](World& w, const Choose& c) { w.sendOddScene(c); }},
      {3, "send a scene whose callback calls the handler", false,
       [](World& w, const Choose& c) { w.sendSceneThatActs(c); }},
      {1, "send a scene whose callback throws", false, [](World& w, const Choose& c) { w.sendSceneThatThrows(c); }},
      {2, "send a scene whose callback takes long", false,
       [](World& w, const Choose& c) { w.sendSceneThatTakesLong(c); }},
      {2, "send a scene during a slow call", true, [](World& w, const Choose& c) { w.sendSceneDuringSlowCall(c); }},
      {3, "ask", false, [](World& w, const Choose& c) { w.ask(c); }},
      {2, "change a detector", true, [](World& w, const Choose& c) { w.changeDetector(c); }},
      {5, "plan a fault", true, [](World& w, const Choose& c) { w.refuseACall(c); }},
      {3, "take the service down or up", true, [](World& w, const Choose&) { w.toggleService(); }},
  };
  return kinds;
}

const World::StepKind& World::anyStep(const Choose& choose, bool withFaults) {
  const auto weightOf = [withFaults](const StepKind& kind) { return withFaults || !kind.isFault ? kind.weight : 0; };
  std::uint32_t weights = 0;
  for (const StepKind& kind : stepKinds()) {
    weights += weightOf(kind);
  }
  std::uint32_t left = choose(weights);
  auto kind = stepKinds().begin();
  while (left >= weightOf(*kind)) {
    left -= weightOf(*kind);
    ++kind;
  }
  return *kind;
}

void World::begin(const StepKind& kind) {
  ++steps_;
  done_.emplace_back(kind.name);
}

void World::step(const Choose& choose) {
  const StepKind* kind = &anyStep(choose, true);
  if (model_.isServiceDown() && choose(3) == 0) {
    kind = &stepKinds().back();  // so that outages are short and cameras come back
  }
  begin(*kind);
  kind->happen(*this, choose);
  if (kind->name != std::string("plan a fault")) {
    liftFaults();  // a fault meets the next step only
  }
  noteEndOfOutage();
  check();
}

int World::anyChannel(const Choose& choose) const {
  return 1 + static_cast<int>(choose(static_cast<std::uint32_t>(settings_.cameras)));
}

int World::anyCamera(const Choose& choose) const {
  constexpr std::uint32_t seldom = 20;
  return choose(seldom) == 0 ? settings_.cameras + 1 : anyChannel(choose);
}

void World::setup(const Choose& choose, int camera) {
  const std::set<std::string> classes =
      anyClasses(choose, camera <= settings_.cameras ? model_.detector(camera) : std::string());
  const Region region = anyRegion(choose);
  std::pair<int, VOD::DetectionCallback> callback(noCallback, nullptr);
  if (choose(10) != 0) {
    callback = arrivals_.makeCallback();
  }
  done_.back() += ": set up camera " + std::to_string(camera);
  const bool succeeds = model_.setup(camera, callback.first, classes, region);
  agree(Handler::setup(camera, callback.second, classes, region) == succeeds, "the result of setup");
}

void World::teardown(int camera) {
  done_.back() += ": tear down camera " + std::to_string(camera);
  model_.teardown(camera);
  Handler::teardown(camera);
}

void World::retry() {
  model_.retry();
  sleep_.release();
  sleep_.waitUntilAsleep();
}

void World::changeDetector(const Choose& choose) {
  const int camera = anyChannel(choose);
  const std::string detector = anyDetector(choose, camera);
  model_.setDetector(camera, detector);
  host::channel(camera - 1).detectorInformation(detector);
}

}  // namespace tarn::test
