// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

// Scenes that are sent in a world, and what may happen while they are received.

#include "endurance/campaign/world.h"

#include <vod_host.h>

#include <stdexcept>
#include <thread>

namespace tarn::test {

namespace host = vod::host;
using host::Function;
using vod::schedule::Fault;
using vod::schedule::Kind;

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
  Fault damage = faultNow(Kind::Damage);
  damage.camera = camera;
  happen(damage);
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

Fault World::hanging(Function function) const {
  Fault fault = faultNow(Kind::Hang);
  fault.function = host::name(function);
  return fault;
}

void World::sendSceneDuringSlowCall(const Choose& choose) {
  liftFaults();  // so that the slow call is the one that is meant
  const int camera = anyChannel(choose);
  const bool canBeTornDown = model_.active().count(camera) != 0 && model_.pending().count(camera) == 0;
  if (canBeTornDown && choose(2) == 0) {
    sendSceneDuringSlowTeardown(choose, camera);
  } else {
    sendSceneDuringSlowSetup(choose, camera);
  }
}

void World::sendSceneDuringSlowSetup(const Choose& choose, int camera) {
  const bool isUpdate = model_.active().count(camera) != 0;
  const Function slow = isUpdate ? Function::GetInformation : Function::Create;
  const host::Gate gate;
  happen(hanging(slow));
  host::plan(host::Fault(slow).waitsAt(gate));
  if (choose(3) == 0) {
    Fault refusal = faultNow(Kind::Refuse);
    refusal.function = host::name(slow);
    refusal.count = 1;
    happen(refusal);
  }

  const int receiver = anyChannel(choose);
  const bool isReceived = model_.active().count(receiver) != 0;
  const std::string scene = anyScene(choose);
  std::thread thread([&] { setup(choose, camera); });
  gate.waitUntilReached();
  host::channel(receiver - 1).pushScene(scene);
  gate.open();
  thread.join();
  host::drain();
  // The set-up holds the registry, so the frame comes after it, also when it is the camera's own.
  if (isReceived) {
    expect(model_.sendScene(receiver, scene));
  }
}

void World::sendSceneDuringSlowTeardown(const Choose& choose, int camera) {
  const host::Gate gate;
  happen(hanging(Function::Unsubscribe));
  host::plan(host::Fault(Function::Unsubscribe).waitsAt(gate));
  std::thread thread([&] { teardown(camera); });
  gate.waitUntilReached();
  // The teardown does not hold the registry while the platform takes long: frames arrive, but none of its own camera.
  const int receiver = anyChannel(choose);
  const std::string scene = anyScene(choose);
  expect(model_.sendScene(receiver, scene));
  host::channel(receiver - 1).pushScene(scene);
  host::drain();
  gate.open();
  thread.join();
}

}  // namespace tarn::test
