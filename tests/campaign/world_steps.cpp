// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

// What can happen in a world, each done to the library and to the model.

#include "campaign/world.h"

#include <tarnvod/video_object_detection.pb.h>
#include <vod_host.h>

#include <array>

namespace tarn::test {

namespace host = vod::host;
using host::Function;
using VOD::Handler;

namespace {

constexpr int failure = 5;  // any code but 0

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

constexpr std::array<Function, 14> everyFunction = {Function::Create,
                                                    Function::Delete,
                                                    Function::Subscribe,
                                                    Function::Unsubscribe,
                                                    Function::SetGetDetectionCallback,
                                                    Function::SetTeardownCallback,
                                                    Function::SetReceiveEmptyHits,
                                                    Function::UseChannelConfiguration,
                                                    Function::SetChannelConfiguration,
                                                    Function::GetInformation,
                                                    Function::GetNbrChannels,
                                                    Function::GetNbrChannelsSimultaneously,
                                                    Function::GetVersion,
                                                    Function::ServiceIsEnabled};

}  // namespace

void World::step(const Choose& choose) {
  struct Kind {
    std::uint32_t weight;
    const char* name;
    std::function<void(World&, const Choose&)> happen;
  };
  static const std::array<Kind, 13> kinds = {{
      {6, "set up", [](World& w, const Choose& c) { w.setup(c, w.anyCamera(c)); }},
      {2, "tear down", [](World& w, const Choose& c) { w.teardown(w.anyCamera(c)); }},
      {9, "drop", [](World& w, const Choose& c) { w.drop(w.anyChannel(c)); }},
      {9, "retry", [](World& w, const Choose&) { w.retry(); }},
      {8, "send a scene", [](World& w, const Choose& c) { w.sendScene(c); }},
      {2, "send odd bytes", [](World& w, const Choose& c) { w.sendOddScene(c); }},
      {3, "send a scene whose callback calls the handler", [](World& w, const Choose& c) { w.sendSceneThatActs(c); }},
      {1, "send a scene whose callback throws", [](World& w, const Choose& c) { w.sendSceneThatThrows(c); }},
      {2, "send a scene whose callback takes long", [](World& w, const Choose& c) { w.sendSceneThatTakesLong(c); }},
      {3, "ask", [](World& w, const Choose& c) { w.ask(c); }},
      {2, "change a detector", [](World& w, const Choose& c) { w.changeDetector(c); }},
      {5, "plan a fault", [](World& w, const Choose& c) { w.planFault(c); }},
      {3, "take the service down or up", [](World& w, const Choose&) { w.toggleService(); }},
  }};
  constexpr std::uint32_t weights = 55;
  std::uint32_t left = choose(weights);
  const Kind* kind = kinds.begin();
  while (left >= kind->weight) {
    left -= kind->weight;
    ++kind;
  }
  if (model_.isServiceDown() && choose(3) == 0) {
    kind = &kinds.back();  // so that outages are short and cameras come back
  }
  done_.emplace_back(kind->name);
  kind->happen(*this, choose);
  if (kind->name != std::string("plan a fault")) {
    liftFaults();  // a fault meets the next step only
  }
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

void World::drop(int camera) {
  done_.back() += ": drop camera " + std::to_string(camera);
  model_.dropSubscription(camera);
  host::channel(camera - 1).dropSubscriptions();
  host::drain();
}

void World::toggleService() {
  if (model_.isServiceDown()) {
    model_.bringServiceUp();
    host::bringServiceUp();
    return;
  }
  callsAreOrdered_ = false;  // the cameras' threads run side by side
  model_.takeServiceDown();
  host::takeServiceDown();
  host::drain();
}

void World::changeDetector(const Choose& choose) {
  const int camera = anyChannel(choose);
  const std::string detector = anyDetector(choose, camera);
  model_.setDetector(camera, detector);
  host::channel(camera - 1).detectorInformation(detector);
}

void World::planFault(const Choose& choose) {
  const Function function = everyFunction[choose(everyFunction.size())];
  const int call = 1 + static_cast<int>(choose(3));
  const bool serviceReturns = choose(6) == 0;
  done_.back() += std::string(": call ") + std::to_string(call) + " of " + host::name(function) +
                  (serviceReturns ? ", the service returns" : "");
  host::Fault fault(function);
  fault.onCall(call).failsWith(function == Function::ServiceIsEnabled ? 0 : failure);
  if (serviceReturns) {
    fault.bringsServiceUp();
  }
  host::plan(fault);
  model_.planFault(function, call, serviceReturns);
}

void World::sendScene(const Choose& choose) {
  const int camera = anyChannel(choose);
  const std::string scene = anyScene(choose);
  done_.back() += " to camera " + std::to_string(camera);
  expect(model_.sendScene(camera, scene));
  if (choose(2) == 0) {
    host::channel(camera - 1).deliverScene(scene);
  } else {
    host::channel(camera - 1).pushScene(scene);
    host::drain();
  }
}

void World::sendOddScene(const Choose& choose) {
  const int camera = anyChannel(choose);
  const std::string scene = anyScene(choose);
  done_.back() += " to camera " + std::to_string(camera);
  switch (choose(4)) {
    case 0:  // no buffer: nothing arrives
      host::channel(camera - 1).pushNullScene(static_cast<std::int32_t>(choose(3)));
      break;
    case 1:  // a length that none can have: as if nothing could be read
      expect(model_.sendScene(camera, ""));
      host::channel(camera - 1).pushSceneOfLength(scene, -1 - static_cast<std::int32_t>(choose(3)));
      break;
    case 2: {  // a length that is too short
      const std::uint32_t length = choose(static_cast<std::uint32_t>(scene.size()) + 1);
      expect(model_.sendScene(camera, scene.substr(0, length)));
      host::channel(camera - 1).pushSceneOfLength(scene, static_cast<std::int32_t>(length));
      break;
    }
    default: {  // bytes that are no message from the first on
      const std::string bytes = "\xFF\xFF\xFF" + scene;
      expect(model_.sendScene(camera, bytes));
      host::channel(camera - 1).pushScene(bytes);
    }
  }
  host::drain();
}

World::Action World::anyHandlerCall(const Choose& choose) {
  const int camera = anyCamera(choose);
  switch (choose(4)) {
    case 0:
      return [this, camera] { teardown(camera); };
    case 1:
      return [this, choose] { ask(choose); };
    default:
      return [this, choose, camera] { setup(choose, camera); };
  }
}

void World::sendSceneThatActs(const Choose& choose) {
  const int camera = anyChannel(choose);
  const std::string scene = anyScene(choose);
  const auto frame = model_.sendScene(camera, scene);
  expect(frame);
  if (frame && choose(4) == 0) {
    arrivals_.nextOneDoes([this, camera] {
      model_.dropSubscription(camera);
      host::channel(camera - 1).dropSubscriptions();
    });
  } else if (frame) {
    arrivals_.nextOneDoes(anyHandlerCall(choose));
  }
  host::channel(camera - 1).pushScene(scene);
  host::drain();
  host::drain();  // for a drop that came up while the first waited
}

void World::sendSceneThatThrows(const Choose& choose) {
  const int camera = anyChannel(choose);
  const std::string scene = anyScene(choose);
  const auto frame = model_.sendScene(camera, scene);
  expect(frame);
  if (frame) {
    ++expectedExceptions_;
    arrivals_.nextOneDoes([] { throw std::runtime_error("the application's own"); });
  }
  host::channel(camera - 1).pushScene(scene);
  host::drain();
}

void World::sendSceneThatTakesLong(const Choose& choose) {
  const int camera = anyChannel(choose);
  const std::string scene = anyScene(choose);
  const auto frame = model_.sendScene(camera, scene);
  expect(frame);
  const host::Gate gate;
  if (frame) {
    arrivals_.nextOneDoes([gate] { gate.pass(); });
  }
  host::channel(camera - 1).pushScene(scene);
  if (frame) {
    gate.waitUntilReached();
    if (settings_.deleteWaitsForCallbacks) {
      // The teardown of this very camera waits for its callback, and so must find the way free.
      host::plan(host::Fault(Function::Unsubscribe).always().runs([gate] { gate.open(); }));
    }
    if (choose(4) == 0) {
      retry();
    } else {
      anyHandlerCall(choose)();
    }
    gate.open();
  }
  host::drain();
}

}  // namespace tarn::test
