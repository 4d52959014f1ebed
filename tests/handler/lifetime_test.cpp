// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

// Who lives how long: the user data, the application's callable, the state at the end of the process.

#include "handler/handler_test.h"

#include <cstdlib>
#include <future>
#include <mutex>
#include <type_traits>

extern "C" void __cxa_finalize(void* library);  // of the C++ runtime

namespace tarn::test {
namespace {

using testing::ElementsAre;
using vod::host::Gate;

// Braces would make an object of an aggregate, deleted constructors or not.
static_assert(!std::is_aggregate_v<Handler>);
static_assert(!std::is_default_constructible_v<Handler> && !std::is_copy_constructible_v<Handler>);

/** Something that a callable captures; `released` becomes true with the last copy. */
std::shared_ptr<void> onRelease(std::function<void()> action) {
  return {nullptr, [action = std::move(action)](void*) { action(); }};
}

using TheCallable = HandlerTest;

TEST_F(TheCallable, IsReleasedByTheTimeTeardownReturns) {
  bool released = false;
  Handler::setup(1, [token = onRelease([&] { released = true; })](auto&&, int) {}, {"human"});
  vod::host::channel(0).deliverScene(sceneOf({1}));
  EXPECT_FALSE(released);
  Handler::teardown(1);
  EXPECT_TRUE(released);
}

TEST_F(TheCallable, OfAPendingCameraIsReleasedByTheTimeTeardownReturns) {
  bool released = false;
  Handler::setup(1, [token = onRelease([&] { released = true; })](auto&&, int) {}, {"unicorn"});
  Handler::teardown(1);
  EXPECT_TRUE(released);
}

TEST_F(TheCallable, OfAnUpdatedCameraIsReleasedByTheTimeSetupReturns) {
  bool released = false;
  Handler::setup(1, [token = onRelease([&] { released = true; })](auto&&, int) {}, {"human"});
  setUp(1);
  EXPECT_TRUE(released);
}

TEST_F(TheCallable, StaysWithAFrameThatIsBeingDeliveredWhileItsCameraIsTornDown) {
  vod::host::waitForCallbacks(false);
  const Gate gate;
  bool released = false;
  bool releasedTooEarly = false;
  Handler::setup(1,
                 [&, token = onRelease([&] { released = true; })](auto&&, int) {
                   gate.pass();
                   releasedTooEarly = released;
                 },
                 {"human"});
  vod::host::channel(0).pushScene(sceneOf({1}));
  gate.waitUntilReached();
  Handler::teardown(1);
  EXPECT_FALSE(released);
  gate.open();
  vod::host::drain();
  EXPECT_TRUE(released);
  EXPECT_FALSE(releasedTooEarly);
}

/** The destructor of what a callable captured may do what needs another thread to get through the library. */
class TheCallablesDestructor : public HandlerTest {
 protected:
  /** Asks, on another thread, for what needs the library's lock; false when that was not to be had. */
  std::shared_ptr<void> usingTheLibrary() {
    return onRelease([this] {
      std::async(std::launch::async, [] { Handler::getDetectorInformation(2); }).get();
      ++ran_;
    });
  }

  int ran_ = 0;
};

TEST_F(TheCallablesDestructor, RunsWithoutTheLockWhenACameraIsTornDown) {
  Handler::setup(1, [token = usingTheLibrary()](auto&&, int) {}, {"human"});
  Handler::teardown(1);
  EXPECT_EQ(ran_, 1);
}

TEST_F(TheCallablesDestructor, RunsWithoutTheLockWhenACameraIsUpdated) {
  Handler::setup(1, [token = usingTheLibrary()](auto&&, int) {}, {"human"});
  setUp(1);
  EXPECT_EQ(ran_, 1);
}

TEST_F(TheCallablesDestructor, RunsWithoutTheLockWhenAPendingCameraIsSetUpAgain) {
  Handler::setup(1, [token = usingTheLibrary()](auto&&, int) {}, {"unicorn"});
  setUp(1);
  EXPECT_EQ(ran_, 1);
}

TEST_F(TheCallablesDestructor, RunsWithoutTheLockWhenAFailedUpdateReplacesAnother) {
  setUp(1);
  Handler::setup(1, [token = usingTheLibrary()](auto&&, int) {}, {"unicorn"});
  setUp(1, {"unicorn"});
  EXPECT_EQ(ran_, 1);
}

TEST_F(TheCallablesDestructor, RunsWithoutTheLockWhenARetryReplacesIt) {
  Handler::setup(1, [token = usingTheLibrary()](auto&&, int) {}, {"human"});
  setUp(1, {"unicorn"});
  retryOnce();
  EXPECT_EQ(ran_, 1);
}

TEST_F(TheCallablesDestructor, RunsWithoutTheLockWhenTheServiceDropsACameraThatIsAlsoPending) {
  Handler::setup(1, [token = usingTheLibrary()](auto&&, int) {}, {"human"});
  setUp(1, {"unicorn"});
  vod::host::channel(0).dropSubscriptions();
  vod::host::drain();
  EXPECT_EQ(ran_, 1);
}

/** A teardown reaches the platform while the callback of the same camera waits for the lock, or is about to. */
class ATeardownBesideACallback : public HandlerTest, public testing::WithParamInterface<bool> {};

TEST_P(ATeardownBesideACallback, LetsTheCallbackReturnWithoutAFrame) {
  vod::host::waitForCallbacks(GetParam());
  setUp(1);
  // The question for another camera's detector stands at the gate with the lock held; the frame waits for that lock.
  const Gate lockHeld;
  vod::host::plan(Fault(Function::GetInformation).waitsAt(lockHeld));
  auto query = std::async(std::launch::async, [] { Handler::getDetectorInformation(2); });
  lockHeld.waitUntilReached();
  vod::host::channel(0).pushScene(sceneOf({1}));
  auto teardown = std::async(std::launch::async, [] { Handler::teardown(1); });
  lockHeld.open();
  query.get();
  teardown.get();
  const std::size_t receivedByThen = inbox_.size();
  vod::host::drain();
  if (GetParam()) {
    EXPECT_EQ(inbox_.size(), receivedByThen) << "nothing arrives after teardown on a platform that waits";
  }
  EXPECT_LE(inbox_.size(), 1U);
}

INSTANTIATE_TEST_SUITE_P(OnAPlatformThatWaitsAndOneThatDoesNot, ATeardownBesideACallback, testing::Bool());

class TheEndOfTheProcess : public HandlerTest {
 protected:
  TheEndOfTheProcess() { GTEST_FLAG_SET(death_test_style, "threadsafe"); }
};

TEST_F(TheEndOfTheProcess, IsAnAbortWhileTheRetryThreadRuns) {
  EXPECT_DEATH(
      {
        Handler::initialize(1000);
        std::exit(0);
      },
      "");
}

TEST_F(TheEndOfTheProcess, IsCleanOnceTheThreadWasStopped) {
  EXPECT_EXIT(
      {
        sleep_.releaseAll();
        Handler::initialize(1);
        Handler::deinitialize();
        std::exit(0);
      },
      testing::ExitedWithCode(0), "");
}

TEST_F(TheEndOfTheProcess, MakesNoPlatformCallForACameraThatIsStillSetUpAndReleasesItsCallable) {
  EXPECT_EXIT(
      {
        vod::host::reset();
        vod::host::channel(0).detectorInformation(detectorBytes());
        Handler::setup(1, [token = onRelease([] { std::fputs("released\n", stderr); })](auto&&, int) {}, {"human"});
        std::exit(0);
      },
      testing::ExitedWithCode(0), "released");
}

TEST_F(TheEndOfTheProcess, LeavesNothingToCallbacksThatStillCome) {
  EXPECT_EXIT(
      {
        Handler::setup(1, [](auto&&, int) { std::fputs("received a frame\n", stderr); }, {"human"});
        const vod::host::Registration live = vod::host::registration(2);
        __cxa_finalize(nullptr);  // what exit does: destroys all static objects, those of the library too
        const std::uint8_t nothing = 0;
        live.detection(&nothing, 0, live.userData);
        live.teardown(live.userData);
        std::fputs("called back\n", stderr);
        std::_Exit(0);
      },
      testing::ExitedWithCode(0), "^called back\n$");
}

}  // namespace
}  // namespace tarn::test
