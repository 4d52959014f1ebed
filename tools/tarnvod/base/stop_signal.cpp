// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "base/stop_signal.h"

#include "base/errors.h"
#include "base/signal_flag.h"

#include <csignal>
#include <initializer_list>

namespace tarn::command {
namespace {

SignalFlag requested = false;

}  // namespace

void installStopSignals() {
  struct sigaction action {};
  action.sa_handler = [](int) { requested = true; };
  // Without SA_RESTART: a write that waits for a reader is interrupted, so that it cannot hold the end up.
  action.sa_flags = static_cast<int>(SA_RESETHAND);
  for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
    struct sigaction inherited {};
    sigaction(signal, nullptr, &inherited);
    if (inherited.sa_handler != SIG_IGN) {  // as nohup wants it
      sigaction(signal, &action, nullptr);
    }
  }
}

bool stopRequested() {
  return requested;
}

void throwIfStopRequested() {
  if (stopRequested()) {
    throw Failure("stopped by a signal before the result was complete");
  }
}

}  // namespace tarn::command
