// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

// What happens when the operating system refuses the library its lock or its thread. The program defines
// pthread_mutex_lock and pthread_create itself; ThreadSanitizer does the same, so this file is left out of its builds.

#include "handler/handler_test.h"
#include "handler/on_release.h"

#include <dlfcn.h>
#include <pthread.h>

#include <atomic>
#include <cerrno>
#include <functional>
#include <system_error>

namespace {

thread_local bool refusing = false;
thread_local int locksUntilRefusal = 0;
std::atomic<bool> refuseThreads = false;

template <typename Function>
Function next(const char* name) {
  return reinterpret_cast<Function>(dlsym(RTLD_NEXT, name));
}

/** Only the library's own mutex is recursive among those that a refusing thread locks. */
bool isRecursive(const pthread_mutex_t* mutex) {
  return (mutex->__data.__kind & 3) == PTHREAD_MUTEX_RECURSIVE_NP;
}

}  // namespace

extern "C" int pthread_mutex_lock(pthread_mutex_t* mutex) noexcept {
  static const auto original = next<int (*)(pthread_mutex_t*)>("pthread_mutex_lock");
  if (refusing && isRecursive(mutex) && locksUntilRefusal-- == 0) {
    return EAGAIN;
  }
  return original(mutex);
}

extern "C" int pthread_create(pthread_t* thread, const pthread_attr_t* attributes, void* (*start)(void*),
                              void* argument) noexcept {
  static const auto original =
      next<int (*)(pthread_t*, const pthread_attr_t*, void* (*)(void*), void*)>("pthread_create");
  return refuseThreads ? EAGAIN : original(thread, attributes, start, argument);
}

namespace tarn::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

/** The error that a call throws while the library's N-th lock, counted from 0, is refused. */
std::error_code errorOf(const std::function<void()>& call, int refusedLock = 0) {
  locksUntilRefusal = refusedLock;
  refusing = true;
  std::error_code code;
  try {
    call();
  } catch (const std::system_error& failure) {
    code = failure.code();
  }
  refusing = false;
  return code;
}

const std::error_code refused(EAGAIN, std::generic_category());

using ALockThatIsRefused = HandlerTest;

TEST_F(ALockThatIsRefused, LeavesEveryFunctionThatNeedsItAsASystemError) {
  EXPECT_EQ(errorOf([] { Handler::setup(1, nullptr, {}); }), refused);
  EXPECT_EQ(errorOf([] { Handler::teardown(1); }), refused);
  EXPECT_EQ(errorOf([] { Handler::getDetectorInformation(1); }), refused);
  EXPECT_EQ(errorOf([] { VOD::getDetectorInformation(); }), refused);
  EXPECT_EQ(errorOf([] { Handler::getSupportedClasses(); }), refused);
  EXPECT_EQ(errorOf([] { Handler::getSupportedAttributes(); }), refused);
  EXPECT_THAT(vod::host::journal(), IsEmpty());
}

TEST_F(ALockThatIsRefused, DoesNotMatterToQueriesThatNeedNone) {
  const std::error_code none;
  EXPECT_EQ(errorOf([] { Handler::isDlpuEnabled(); }), none);
  EXPECT_EQ(errorOf([] { Handler::getNumberOfChannels(); }), none);
  EXPECT_EQ(errorOf([] { Handler::getNumberOfSimultaneousChannels(); }), none);
  EXPECT_EQ(errorOf([] { Handler::getServiceVersion(); }), none);
}

TEST_F(ALockThatIsRefused, LeavesTheDetectionCallbackAsASystemError) {
  setUp(1);
  const vod::host::Registration live = vod::host::registration(2);
  const std::uint8_t nothing = 0;
  EXPECT_EQ(errorOf([&] { live.detection(&nothing, 0, live.userData); }), refused);
  EXPECT_EQ(inbox_.size(), 0U);
}

TEST_F(ALockThatIsRefused, LeavesTheTeardownCallbackAsASystemErrorAndTheCameraActive) {
  setUp(1);
  const vod::host::Registration live = vod::host::registration(2);
  EXPECT_EQ(errorOf([&] { live.teardown(live.userData); }), refused);
  EXPECT_THAT(classesAfter(1, sceneOf({1})), ElementsAre(ElementsAre("human")));
}

TEST_F(ALockThatIsRefused, InsideASetUpLeavesItInsteadOfParkingTheCamera) {
  EXPECT_EQ(errorOf([this] { setUp(1); }, 1), refused) << "the question for the detector locks again";
  EXPECT_THAT(log_.lines(), IsEmpty());
  EXPECT_EQ(vod::host::liveSubscribers(), 0);
  vod::host::clearJournal();
  retryOnce();
  EXPECT_THAT(vod::host::journal(), IsEmpty()) << "nothing was parked";
}

TEST_F(ALockThatIsRefused, InsideASetUpOfAPendingCameraGivesItsRetriesUp) {
  bool released = false;
  Handler::setup(1, [token = onRelease([&] { released = true; })](auto&&, int) {}, {"unicorn"});
  EXPECT_EQ(errorOf([this] { setUp(1); }, 2), refused) << "the question for the detector locks again";
  EXPECT_TRUE(released);
  vod::host::clearJournal();
  retryOnce();
  EXPECT_THAT(vod::host::journal(), IsEmpty());
}

TEST_F(ALockThatIsRefused, AfterThePendingRecordWasDestroyedLeavesTheSetUpAsASystemError) {
  setUp(1, {"unicorn"});
  EXPECT_EQ(errorOf([this] { setUp(1); }, 1), refused);
  EXPECT_TRUE(setUp(1));
}

TEST_F(ALockThatIsRefused, LateInASetUpLeavesNoSubscriberBehind) {
  EXPECT_EQ(errorOf([this] { setUp(1); }, 2), refused) << "reading the attribute names locks again";
  EXPECT_THAT(log_.lines(), IsEmpty());
  EXPECT_EQ(vod::host::liveSubscribers(), 0);
  EXPECT_TRUE(setUp(1));
}

TEST_F(ALockThatIsRefused, OnTheRetryThreadEndsTheProcess) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  EXPECT_DEATH(
      {
        setUp(1);
        const int down = vod::host::plan(Fault(Function::Create).always().failsWith(1));
        setUp(2);
        vod::host::lift(down);
        vod::host::plan(Fault(Function::Create).onCall(1).runs([] { refusing = true; }));
        sleep_.releaseAll();
        Handler::initialize(0);
        vod::host::waitForCalls([](const auto&) { return false; });  // for as long as the process lives
      },
      "system_error");
}

TEST_F(ALockThatIsRefused, ToStartTheRetryThreadIsASystemErrorAndItCanBeStartedLater) {
  refuseThreads = true;
  EXPECT_EQ(errorOf([] { Handler::initialize(1); }), refused);
  refuseThreads = false;
  Handler::deinitialize();
  retryOnce();
}

}  // namespace
}  // namespace tarn::test
