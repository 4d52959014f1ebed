// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

// The end of a `Camera`: from a thread of the application, from its own callbacks, while it is set up again, while the
// library retries, next to another one of its number, and at the end of the process.

#include "camera_application.h"
#include "worlds.h"

#include <tarnvod/handler.h>

#include <cstdlib>
#include <utility>

namespace tarn::test {
namespace {

using VOD::Handler;
using Action = std::function<void(CameraApplication&)>;

void make(CameraApplication& application) {
  application.make();
}
void end(CameraApplication& application) {
  application.end();
}
void sendFrame(CameraApplication& application) {
  application.sendFrame();
}
void drop(CameraApplication& application) {
  application.drop();
}
void makeAndDrop(CameraApplication& application) {
  application.make();
  application.drop();
}
void makeAndDropWithRetries(CameraApplication& application) {
  Handler::initialize(1);
  makeAndDrop(application);
}
void makeWithEndInFrame(CameraApplication& application) {
  application.make();
  application.whenFrameComes([&application] { application.end(); });
}
void makeWithEndInReport(CameraApplication& application) {
  application.whenStateComes([&application] { application.end(); });
  application.make();
}
void makeAndEndSecond(CameraApplication& application) {
  application.makeAndEndSecond();
}
void endAndMake(CameraApplication& application) {
  application.end();
  application.make();
}
void setUpThroughHandler(CameraApplication& /*application*/) {
  Handler::setup(1, [](auto&&, int) {}, {"human"});
}
void exitProcess(CameraApplication& /*application*/) {
  std::exit(EXIT_SUCCESS);  // NOLINT(concurrency-mt-unsafe): the other threads are what is tested
}

/** Whatever happened: a camera that is left receives, and its end leaves nothing, not even the cameras' thread. */
void finish(CameraApplication& application) {
  Handler::deinitialize();
  application.whenFrameComes(nullptr);
  application.whenStateComes(nullptr);
  if (application.hasCamera()) {
    application.expectFrames();
    application.end();
  }
  Handler::teardown(1);  // what an actor may have set up through the handler
  Handler::teardown(1);
  application.awaitNothingLeft();
  application.makeAndEndSecond();  // ends the thread that a camera leaves which ends in a callback
  application.awaitNothingLeft();
}

World world(std::string name, Ending ending, const Action& prologue, const std::vector<Action>& actors) {
  const auto script = [ending, prologue, actors](const Scheduler::Failure& fail) {
    // Those of a world that ends the process outlive that, as the library may still call them.
    const std::shared_ptr<CameraApplication> application(
        new CameraApplication(fail),
        [ending](CameraApplication* made) { ending == Ending::Returns ? delete made : void(); });
    Script made;
    made.prologue = [=] { prologue(*application); };
    for (const Action& actor : actors) {
      made.actors.emplace_back([=] { actor(*application); });
    }
    made.epilogue = [=] {
      if (ending != Ending::Returns) {
        fail("the process did not end");
      }
      finish(*application);
    };
    return made;
  };
  return {std::move(name), ending, script, true};
}

}  // namespace

std::vector<World> cameraWorlds() {
  return {
      world("camera-end-and-frame", Ending::Returns, make, {end, sendFrame}),
      world("camera-end-and-drop", Ending::Returns, make, {end, drop, sendFrame}),
      world("camera-end-and-renewal", Ending::Returns, makeAndDrop, {end, sendFrame}),
      world("camera-end-and-retry", Ending::Returns, makeAndDropWithRetries, {end, sendFrame}),
      world("camera-end-and-update", Ending::Returns, make, {end, setUpThroughHandler}),
      world("camera-end-in-frame", Ending::Returns, makeWithEndInFrame, {sendFrame, drop}),
      world("camera-end-in-frame-and-update", Ending::Returns, makeWithEndInFrame, {sendFrame, setUpThroughHandler}),
      world("camera-end-in-report", Ending::Returns, makeWithEndInReport, {sendFrame, drop}),
      world("camera-end-and-next", Ending::Returns, make, {endAndMake, sendFrame}),
      world("two-cameras", Ending::Returns, make, {end, makeAndEndSecond, sendFrame}),
      world("exit-and-camera", Ending::Exits, make, {exitProcess, sendFrame, drop}),
  };
}

}  // namespace tarn::test
