// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

// What happens while a thread starts or stops the retry thread. The program defines pthread_create and pthread_join itself, to
// know when; ThreadSanitizer does the same, so this file is left out of its builds.

#include "handler/retry_thread_callback.h"

#include <dlfcn.h>
#include <pthread.h>

#include <cstdlib>
#include <functional>
#include <future>
#include <thread>

extern "C" void __cxa_finalize(void* library);  // of the C++ runtime

namespace {

std::promise<void>* joining = nullptr;

/** Called once by the thread that starts another one next, before it goes on. */
thread_local std::function<void()>* started = nullptr;

}  // namespace

extern "C" int pthread_create(pthread_t* thread, const pthread_attr_t* attributes, void* (*start)(void*),
                              void* argument) noexcept {
  using Create = int (*)(pthread_t*, const pthread_attr_t*, void* (*)(void*), void*);
  static const auto original = reinterpret_cast<Create>(dlsym(RTLD_NEXT, "pthread_create"));
  const int result = original(thread, attributes, start, argument);
  if (started != nullptr) {
    (*std::exchange(started, nullptr))();
  }
  return result;
}

extern "C" int pthread_join(pthread_t thread, void** result) {
  static const auto original = reinterpret_cast<int (*)(pthread_t, void**)>(dlsym(RTLD_NEXT, "pthread_join"));
  if (joining != nullptr) {
    std::exchange(joining, nullptr)->set_value();
  }
  return original(thread, result);
}

namespace tarn::test {
namespace {

TEST_F(ACallbackOnTheRetryThread, MayCallInitializeWhileAnotherThreadWaitsForTheThreadsEnd) {
  std::promise<void> reached;
  std::promise<void> waiting;
  bool returned = false;
  startRetryThreadAndRunThere([&] {
    reached.set_value();
    waiting.get_future().wait();
    Handler::initialize(9);
    returned = true;
  });
  reached.get_future().wait();
  joining = &waiting;
  Handler::deinitialize();
  EXPECT_TRUE(returned);
}

/** A process whose retry thread is inside of the service when the process ends. */
class AProcessThatEnds : public HandlerTest {
 protected:
  AProcessThatEnds() { GTEST_FLAG_SET(death_test_style, "threadsafe"); }

  /** Lets the first retry wait at a gate. */
  void letARetryWaitAt(const vod::host::Gate& gate) {
    const int down = vod::host::plan(Fault(Function::Create).always().failsWith(1));
    setUp(1);
    vod::host::lift(down);
    vod::host::plan(Fault(Function::Create).onCall(1).waitsAt(gate));
  }
};

TEST_F(AProcessThatEnds, LeavesAThreadThatStopsTheRetryThreadAlone) {
  EXPECT_EXIT(
      {
        const vod::host::Gate inside;
        letARetryWaitAt(inside);
        Handler::initialize(0);
        inside.waitUntilReached();
        std::promise<void> waiting;
        joining = &waiting;
        auto stop = std::async(std::launch::async, [] { Handler::deinitialize(); });
        waiting.get_future().wait();
        __cxa_finalize(nullptr);
        inside.open();
        stop.get();
        std::exit(0);
      },
      testing::ExitedWithCode(0), "^$");
}

TEST_F(AProcessThatEnds, LeavesTheRetryThreadAloneWhileItIsBeingStarted) {
  EXPECT_EXIT(
      {
        const vod::host::Gate inside;
        letARetryWaitAt(inside);
        const vod::host::Gate starting;
        std::function<void()> wait = [&] { starting.pass(); };
        std::thread([&] {
          started = &wait;
          Handler::initialize(1);
        }).detach();
        starting.waitUntilReached();
        inside.waitUntilReached();
        __cxa_finalize(nullptr);
        inside.open();
        sleep_.release();          // after the round that met the end
        sleep_.waitUntilAsleep();  // after the next one, which finds the library closed
        std::exit(0);
      },
      testing::ExitedWithCode(0), "^$");
}

}  // namespace
}  // namespace tarn::test
