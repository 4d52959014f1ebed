// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#ifndef TARNVOD_TESTS_HANDLER_RETRY_THREAD_CALLBACK_H
#define TARNVOD_TESTS_HANDLER_RETRY_THREAD_CALLBACK_H

#include "handler/handler_test.h"

#include <functional>

namespace tarn::test {

/** A platform that delivers a frame on the thread that calls it, which is the retry thread here. */
class ACallbackOnTheRetryThread : public HandlerTest {
 protected:
  /** Starts the retry thread, which runs the action once in a callback of camera 1 while it retries camera 2. */
  void startRetryThreadAndRunThere(std::function<void()> action) {
    Handler::setup(1, [action = std::move(action)](auto&&, int) { action(); }, {"human"});
    const vod::host::Registration live = vod::host::registration(2);
    const int down = vod::host::plan(Fault(Function::Create).always().failsWith(1));
    setUp(2);
    vod::host::lift(down);
    vod::host::plan(Fault(Function::Create).onCall(1).runs([live] {
      const std::uint8_t nothing = 0;
      live.detection(&nothing, 0, live.userData);
    }));
    sleep_.releaseAll();
    Handler::initialize(1);
  }
};

}  // namespace tarn::test

#endif
