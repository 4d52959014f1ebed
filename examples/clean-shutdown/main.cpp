// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

// Runs until it receives SIGTERM or SIGINT, then ends the camera and exits. No callback runs once the camera has ended, so
// that what the callbacks use can be destroyed.

#include <tarnvod/tarnvod.h>

#include <csignal>
#include <iostream>
#include <utility>

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

  bool isFirst = true;
  const auto reportFirst = [&isFirst](auto frame) {
    if (std::exchange(isFirst, false)) {
      std::cout << "receiving: " << frame->detections.size() << " people in the first frame" << std::endl;
    }
  };
  {
    const tarn::VOD::Camera camera(1, {"human"}, reportFirst,
                                   [](const auto& status) { std::clog << status << std::endl; });
    waitForStop(stopSignals);
    std::cout << "stopping" << std::endl;
  }
  std::cout << "stopped" << std::endl;
}
