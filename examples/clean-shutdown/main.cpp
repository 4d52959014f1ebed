// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

// Runs until it receives SIGTERM or SIGINT, then shuts down in order: cameras first, then the retry thread. A process that
// ends while that thread still runs is aborted.

#include <tarnvod/tarnvod.h>

#include <csignal>
#include <iostream>
#include <memory>
#include <utility>

using tarn::VOD::DetectionData;
using tarn::VOD::Handler;

namespace {

/** From here on the stop signals wait for `waitForStop` instead of ending the process. */
sigset_t holdStopSignals() {
  sigset_t signals;
  sigemptyset(&signals);
  sigaddset(&signals, SIGINT);
  sigaddset(&signals, SIGTERM);
  pthread_sigmask(SIG_BLOCK, &signals, nullptr);
  return signals;
}

void waitForStop(const sigset_t& signals) {
  int received = 0;
  sigwait(&signals, &received);
}

}  // namespace

int main() {
  // Before anything starts a thread: threads inherit the mask, so that none of them receives the signal. And nothing runs in
  // a signal handler, where almost no function may be called.
  const sigset_t stopSignals = holdStopSignals();

  Handler::initialize(1);
  const auto isFirst = std::make_shared<bool>(true);
  const auto reportFirst = [isFirst](std::unique_ptr<DetectionData> frame, int) {
    if (std::exchange(*isFirst, false)) {
      std::cout << "receiving: " << frame->detections.size() << " people in the first frame" << std::endl;
    }
  };
  Handler::setup(1, reportFirst, {"human"});

  waitForStop(stopSignals);

  std::cout << "stopping" << std::endl;
  Handler::teardown(1);
  Handler::deinitialize();
  std::cout << "stopped" << std::endl;
}
