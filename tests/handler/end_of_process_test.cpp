// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

// What the end of the process meets: records, threads inside the library, calls and callbacks that still come. Each test
// lets a process of its own end.

#include "handler/handler_test.h"
#include "handler/on_release.h"

#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <future>
#include <memory>
#include <thread>
#include <utility>

extern "C" void __cxa_finalize(void* library);  // of the C++ runtime

namespace {

bool isAChildOfFork = false;

}  // namespace

/** Asked by the leak checker: a child of `fork` inherits the memory of threads that it does not have. */
extern "C" int __lsan_is_turned_off();
extern "C" int __lsan_is_turned_off() {
  return isAChildOfFork ? 1 : 0;
}

namespace tarn::test {
namespace {

using testing::ExitedWithCode;
using vod::host::Gate;

/** What the library does from now on at the platform is printed. */
void reportPlatformCalls() {
  vod::host::aroundCalls([] { std::fputs("called the platform\n", stderr); }, nullptr);
}

/** What `exit` does: destroys all static objects, those of the library too. The test goes on afterwards. */
void destroyStaticObjects() {
  __cxa_finalize(nullptr);
}

VOD::DetectionCallback reportingItsRelease(const char* text) {
  return [token = onRelease([text] { std::fputs(text, stderr); })](auto&&, int) {};
}

/** Nobody waits for it, also at the end of the process. */
template <typename Body>
void onAThreadOfItsOwn(Body body) {
  std::thread(std::move(body)).detach();
}

class TheEndOfTheProcess : public HandlerTest {
 protected:
  TheEndOfTheProcess() { GTEST_FLAG_SET(death_test_style, "threadsafe"); }

  static void failSubscribing() { vod::host::plan(Fault(Function::Subscribe).always().failsWith(1)); }

  /** A child of `fork` that ends in an orderly way; its exit status, or minus the signal that ended it. */
  static int statusOfAChild() {
    const pid_t child = fork();
    if (child == 0) {
      isAChildOfFork = true;
      std::exit(7);
    }
    int status = 0;
    waitpid(child, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
  }
};

TEST_F(TheEndOfTheProcess, IsAnAbortWhileTheRetryThreadRuns) {
  EXPECT_EXIT(
      {
        Handler::initialize(1000);
        sleep_.waitUntilAsleep();
        std::exit(0);
      },
      testing::KilledBySignal(SIGABRT), "terminate called");
}

TEST_F(TheEndOfTheProcess, IsCleanOnceTheThreadWasStopped) {
  EXPECT_EXIT(
      {
        sleep_.releaseAll();
        Handler::initialize(1);
        Handler::deinitialize();
        std::exit(0);
      },
      ExitedWithCode(0), "^$");
}

TEST_F(TheEndOfTheProcess, MakesNoPlatformCallForACameraThatIsStillSetUpAndReleasesItsCallable) {
  EXPECT_EXIT(
      {
        Handler::setup(1, reportingItsRelease("released\n"), {"human"});
        reportPlatformCalls();
        std::exit(0);
      },
      ExitedWithCode(0), "^released\n$");
}

TEST_F(TheEndOfTheProcess, ReleasesPendingCamerasBeforeActiveOnes) {
  EXPECT_EXIT(
      {
        Handler::setup(1, reportingItsRelease("active\n"), {"human"});
        Handler::setup(2, reportingItsRelease("pending\n"), {"unicorn"});
        std::exit(0);
      },
      ExitedWithCode(0), "^pending\nactive\n$");
}

TEST_F(TheEndOfTheProcess, ReleasesCallablesWithoutTheLock) {
  EXPECT_EXIT(
      {
        Handler::setup(1, [token = onRelease([] {
                             std::async(std::launch::async, [] { Handler::getDetectorInformation(2); }).get();
                             std::fputs("asked\n", stderr);
                           })](auto&&, int) {},
                       {"human"});
        std::exit(0);
      },
      ExitedWithCode(0), "^asked\n$");
}

TEST_F(TheEndOfTheProcess, LeavesNothingToCallbacksThatStillCome) {
  EXPECT_EXIT(
      {
        Handler::setup(1, [](auto&&, int) { std::fputs("received a frame\n", stderr); }, {"human"});
        const vod::host::Registration live = vod::host::registration(2);
        destroyStaticObjects();
        const std::uint8_t nothing = 0;
        live.detection(&nothing, 0, live.userData);
        live.teardown(live.userData);
        std::fputs("called back\n", stderr);
        std::_Exit(0);
      },
      ExitedWithCode(0), "^called back\n$");
}

TEST_F(TheEndOfTheProcess, LetsLaterCallsReturnWithoutAPlatformCall) {
  EXPECT_EXIT(
      {
        setUp(1);
        reportPlatformCalls();
        destroyStaticObjects();
        Handler::initialize(0);
        EXPECT_FALSE(Handler::setup(1, nullptr, {}));
        EXPECT_FALSE(Handler::setup(2, nullptr, {}));
        Handler::teardown(1);
        EXPECT_FALSE(Handler::isDlpuEnabled());
        EXPECT_EQ(Handler::getNumberOfChannels(), 0U);
        EXPECT_EQ(Handler::getNumberOfSimultaneousChannels(), 0U);
        EXPECT_EQ(Handler::getServiceVersion(), "");
        EXPECT_EQ(VOD::getDetectorInformation(), VOD::DetectorInformation(::VOD::DetectorInformation()));
        EXPECT_TRUE(Handler::getSupportedClasses().empty());
        EXPECT_TRUE(Handler::getSupportedAttributes().empty());
        Handler::deinitialize();
        std::fputs("returned\n", stderr);
        std::_Exit(HasFailure() ? 1 : 0);
      },
      ExitedWithCode(0), "^returned\n$");
}

TEST_F(TheEndOfTheProcess, DoesNotWaitForASetUpThatIsStuckInTheServiceAndLaterCallsReturn) {
  EXPECT_EXIT(
      {
        const Gate never;
        vod::host::plan(Fault(Function::Subscribe).waitsAt(never));
        onAThreadOfItsOwn([this] { setUp(1); });
        never.waitUntilReached();
        destroyStaticObjects();
        Handler::teardown(1);
        EXPECT_FALSE(Handler::setup(2, nullptr, {}));
        EXPECT_TRUE(Handler::getSupportedClasses().empty());
        std::_Exit(HasFailure() ? 1 : 0);
      },
      ExitedWithCode(0), "^$");
}

TEST_F(TheEndOfTheProcess, KeepsTheOtherCamerasForASetUpThatIsStuckInTheService) {
  EXPECT_EXIT(
      {
        auto owned = std::make_shared<int>(7);
        const std::weak_ptr<int> ofAnotherCamera = owned;
        Handler::setup(2, [owned = std::move(owned)](auto&&, int) {}, {"human"});
        const Gate never;
        vod::host::plan(Fault(Function::Subscribe).waitsAt(never));
        onAThreadOfItsOwn([this] { setUp(1); });
        never.waitUntilReached();
        destroyStaticObjects();
        std::_Exit(ofAnotherCamera.expired() ? 1 : 0);
      },
      ExitedWithCode(0), "^$");
}

TEST_F(TheEndOfTheProcess, LeavesAThreadThatIsTearingACameraDownAlone) {
  EXPECT_EXIT(
      {
        const Gate inside;
        setUp(1);
        vod::host::plan(Fault(Function::Unsubscribe).waitsAt(inside));
        auto teardown = std::async(std::launch::async, [] { Handler::teardown(1); });
        inside.waitUntilReached();
        destroyStaticObjects();
        inside.open();
        teardown.get();
        std::_Exit(0);
      },
      ExitedWithCode(0), "^$");
}

TEST_F(TheEndOfTheProcess, LetsACallbackThatIsRunningTearItsCameraDown) {
  EXPECT_EXIT(
      {
        const Gate inside;
        std::promise<void> returned;
        Handler::setup(1,
                       [&](auto&&, int) {
                         inside.pass();
                         Handler::teardown(1);
                         returned.set_value();
                       },
                       {"human"});
        vod::host::channel(0).pushScene(sceneOf({1}));
        inside.waitUntilReached();
        destroyStaticObjects();
        inside.open();
        returned.get_future().get();
        std::_Exit(0);
      },
      ExitedWithCode(0), "^$");
}

TEST_F(TheEndOfTheProcess, IsCleanWhileThreadsCallTheLibrary) {
  EXPECT_EXIT(
      {
        vod::host::recordCalls(false);
        std::atomic<int> calling = 0;
        for (int camera = 1; camera <= 2; ++camera) {
          onAThreadOfItsOwn([this, &calling, camera] {
            for (int round = 0;; ++round) {
              setUp(camera);
              Handler::getSupportedAttributes();
              Handler::teardown(camera);
              calling += round == 0 ? 1 : 0;
            }
          });
        }
        while (calling < 2) {
          std::this_thread::yield();
        }
        destroyStaticObjects();
        std::_Exit(0);
      },
      ExitedWithCode(0), "^$");
}

TEST_F(TheEndOfTheProcess, IsCleanInAChildOfForkWhileTheParentsRetryThreadRuns) {
  EXPECT_EXIT(
      {
        Handler::initialize(1000);
        sleep_.waitUntilAsleep();
        std::_Exit(statusOfAChild() == 7 ? 0 : 1);
      },
      ExitedWithCode(0), "^$");
}

TEST_F(TheEndOfTheProcess, IsCleanInAChildOfForkWhileTheParentsRetryThreadHoldsTheLock) {
  EXPECT_EXIT(
      {
        failSubscribing();
        setUp(1);
        const Gate never;
        vod::host::plan(Fault(Function::Subscribe).waitsAt(never));
        Handler::initialize(1000);
        never.waitUntilReached();
        std::_Exit(statusOfAChild() == 7 ? 0 : 1);
      },
      ExitedWithCode(0), "^$");
}

TEST_F(TheEndOfTheProcess, IsPrecededInAChildOfForkByARetryThreadOfItsOwnIfItStartsOne) {
#ifdef __SANITIZE_THREAD__
  GTEST_SKIP() << "ThreadSanitizer starts no threads in a child of a process with threads";
#endif
  EXPECT_EXIT(
      {
        Handler::initialize(1000);
        sleep_.waitUntilAsleep();
        if (fork() == 0) {
          isAChildOfFork = true;
          sleep_.releaseAll();
          Handler::deinitialize();  // nothing runs here
          Handler::initialize(1);
          Handler::deinitialize();
          std::exit(7);
        }
        int status = 0;
        wait(&status);
        std::_Exit(WIFEXITED(status) && WEXITSTATUS(status) == 7 ? 0 : 1);
      },
      ExitedWithCode(0), "^$");
}

}  // namespace
}  // namespace tarn::test
