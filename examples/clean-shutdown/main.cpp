// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

// Runs until the system or the user says stop (SIGTERM, SIGINT), then leaves in good order: cameras first, then the
// retry thread. A process that ends while that thread still runs is aborted.

#include <tarnvod/tarnvod.h>

#include <csignal>
#include <iostream>
#include <memory>

using tarn::VOD::DetectionData;
using tarn::VOD::Handler;

namespace {

/** From now on the stop signals wait for `waitForStop` instead of ending the process. */
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
  // Before anything starts a thread: threads inherit the mask, and so none of them is hit by the signal. Nothing runs
  // in a signal handler either, where almost no function may be called.
  const sigset_t stopSignals = holdStopSignals();

  Handler::initialize(1);
  const auto frames = std::make_shared<int>(0);
  const auto count = [frames](std::unique_ptr<DetectionData>, int) {
    if (++*frames == 1) {
      std::cout << "receiving" << std::endl;
    }
  };
  Handler::setup(1, count, {"human"});

  waitForStop(stopSignals);

  std::cout << "stopping" << std::endl;
  Handler::teardown(1);
  Handler::deinitialize();
  std::cout << "stopped" << std::endl;
}
