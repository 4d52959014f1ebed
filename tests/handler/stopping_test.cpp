// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

// A callback on the retry thread while another thread stops that thread. The program defines pthread_join itself, to know
// when; ThreadSanitizer does the same, so this file is left out of its builds.

#include "handler/retry_thread_callback.h"

#include <dlfcn.h>
#include <pthread.h>

#include <future>

namespace {

std::promise<void>* joining = nullptr;

}  // namespace

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

}  // namespace
}  // namespace tarn::test
