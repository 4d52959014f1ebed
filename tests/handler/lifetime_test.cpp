// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

// How long the application's callable lives.

#include "handler/handler_test.h"
#include "handler/on_release.h"

#include <future>
#include <mutex>
#include <type_traits>

namespace tarn::test {
namespace {

using testing::ElementsAre;
using vod::host::Gate;

// Braces would make an object of an aggregate, deleted constructors or not.
static_assert(!std::is_aggregate_v<Handler>);
static_assert(!std::is_default_constructible_v<Handler> && !std::is_copy_constructible_v<Handler>);

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
class ATeardownDuringACallback : public HandlerTest, public testing::WithParamInterface<bool> {};

TEST_P(ATeardownDuringACallback, LetsTheCallbackReturnWithoutAFrame) {
  vod::host::waitForCallbacks(GetParam());
  setUp(1);
  // The teardown has taken the camera out and released the lock; a question for another detector holds the lock.
  const Gate tornDown;
  const Gate lockHeld;
  vod::host::plan(Fault(Function::Unsubscribe).waitsAt(tornDown));
  vod::host::plan(Fault(Function::GetInformation).waitsAt(lockHeld));
  auto teardown = std::async(std::launch::async, [] { Handler::teardown(1); });
  tornDown.waitUntilReached();
  auto query = std::async(std::launch::async, [] { Handler::getDetectorInformation(2); });
  lockHeld.waitUntilReached();
  vod::host::channel(0).pushScene(sceneOf({1}));
  tornDown.open();
  lockHeld.open();
  query.get();
  teardown.get();
  vod::host::drain();
  EXPECT_EQ(inbox_.size(), 0U);
}

INSTANTIATE_TEST_SUITE_P(OnAPlatformThatWaitsAndOneThatDoesNot, ATeardownDuringACallback, testing::Bool());

}  // namespace
}  // namespace tarn::test
