// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "worlds.h"

#include "application.h"

#include <tarnvod/handler.h>

#include <cstdlib>
#include <memory>
#include <utility>

namespace tarn::test {
namespace {

using VOD::Handler;
using Action = std::function<void(Application&)>;

/** What the camera is after all threads have ended and what failed was retried. */
enum class Camera { Subscribed, TornDown, Either };

/** A world whose threads all end: afterwards the camera is as it should be, and a teardown leaves nothing of it. */
World returning(std::string name, const Action& prologue, const std::vector<Action>& actors, Camera camera) {
  const auto script = [prologue, actors, camera](const Scheduler::Failure& fail) {
    const auto application = std::make_shared<Application>(fail);
    Script made;
    made.prologue = [=] { prologue(*application); };
    for (const Action& actor : actors) {
      made.actors.emplace_back([=] { actor(*application); });
    }
    made.epilogue = [=] {
      application->retry();
      if (camera == Camera::Subscribed) {
        application->expectSubscribed();
      }
      if (camera != Camera::TornDown) {
        application->tearDown();
      }
      application->expectNothingLeft();
    };
    return made;
  };
  return {std::move(name), Ending::Returns, script, false};
}

/** A world in which an actor ends the process while the others are inside the library. */
World ending(std::string name, Ending ending, const Action& prologue, const std::vector<Action>& actors) {
  const auto script = [prologue, actors](const Scheduler::Failure& fail) {
    // Outlives the process's end, as the library may still call it.
    auto& application = *new Application(fail);
    Script made;
    made.prologue = [=, &application] { prologue(application); };
    for (const Action& actor : actors) {
      made.actors.emplace_back([=, &application] { actor(application); });
    }
    made.epilogue = [fail] { fail("the process did not end"); };
    return made;
  };
  return {std::move(name), ending, script, false};
}

void nothing(Application& /*application*/) {}
void setUp(Application& application) {
  application.setUp();
}
void tearDown(Application& application) {
  application.tearDown();
}
void sendFrame(Application& application) {
  application.sendFrame();
}
void drop(Application& application) {
  application.drop();
}
void startAndStop(Application& /*application*/) {
  Handler::initialize(1);
  Handler::deinitialize();
}
void setUpWithRetries(Application& application) {
  Handler::initialize(1);
  application.setUp();
}
void failToSetUpWithRetries(Application& application) {
  Handler::initialize(1);
  application.platform().refuse(1);
  application.setUp();
}
void tearDownAndSetUp(Application& application) {
  application.tearDown();
  application.setUp();
}
void setUpWithTeardownInCallback(Application& application) {
  application.setUp();
  application.whenFrameComes([&application] { application.tearDown(); });
}
void dropDuringSetUp(Application& application) {
  Handler::initialize(1);
  application.platform().duringNextSubscribe([&application] { application.drop(); });
}
void askForTheDetector(Application& /*application*/) {
  Handler::getSupportedAttributes();
  Handler::getDetectorInformation(1);
}
void exitProcess(Application& /*application*/) {
  std::exit(EXIT_SUCCESS);  // NOLINT(concurrency-mt-unsafe): the other threads are what is tested
}
void stopAndExitProcess(Application& application) {
  Handler::deinitialize();
  exitProcess(application);
}
void setUpThatNeverReturns(Application& application) {
  application.platform().duringNextSubscribe([] { Scheduler::waitUntil([] { return false; }); });
  application.setUp();
}

std::vector<World> handlerWorlds() {
  return {
      returning("drop-and-frame", setUpWithRetries, {drop, sendFrame}, Camera::Subscribed),
      returning("drop-and-teardown", setUpWithRetries, {drop, tearDown}, Camera::TornDown),
      returning("late-drop", setUpWithRetries, {drop, tearDownAndSetUp}, Camera::Subscribed),
      returning("late-drop-without-retries", setUp, {drop, tearDownAndSetUp, sendFrame}, Camera::Subscribed),
      returning("drop-during-subscribe", dropDuringSetUp, {setUp, sendFrame}, Camera::Subscribed),
      returning("retry-and-teardown", failToSetUpWithRetries, {tearDown}, Camera::TornDown),
      returning("retry-and-setup", failToSetUpWithRetries, {setUp, sendFrame}, Camera::Subscribed),
      returning("retry-setup-and-teardown", failToSetUpWithRetries, {setUp, tearDown}, Camera::Either),
      returning("frame-update-and-teardown", setUp, {sendFrame, setUp, tearDown}, Camera::Either),
      returning("two-setups", nothing, {setUp, setUp, sendFrame}, Camera::Subscribed),
      returning("teardown-in-callback", setUpWithTeardownInCallback, {sendFrame, setUp}, Camera::Either),
      returning("starts-and-stops", failToSetUpWithRetries, {startAndStop, startAndStop}, Camera::Subscribed),
      returning("questions-and-drop", setUpWithRetries, {askForTheDetector, drop}, Camera::Subscribed),
      ending("exit-and-frame", Ending::Exits, setUp, {exitProcess, sendFrame, drop}),
      ending("exit-and-setup", Ending::Exits, nothing, {exitProcess, setUp, tearDown}),
      ending("exit-and-teardown-in-callback", Ending::Exits, setUpWithTeardownInCallback, {exitProcess, sendFrame}),
      ending("exit-and-stuck-setup", Ending::Exits, nothing, {exitProcess, setUpThatNeverReturns}),
      ending("exit-after-retries", Ending::Exits, setUpWithRetries, {stopAndExitProcess, drop}),
      ending("exit-with-retries", Ending::Aborts, setUpWithRetries, {exitProcess, drop}),
  };
}

std::vector<World> makeWorlds() {
  std::vector<World> all = handlerWorlds();
  for (World& world : cameraWorlds()) {
    all.push_back(std::move(world));
  }
  return all;
}

}  // namespace

const std::vector<World>& worlds() {
  static const std::vector<World> all = makeWorlds();
  return all;
}

}  // namespace tarn::test
