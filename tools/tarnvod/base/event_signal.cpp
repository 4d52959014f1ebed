// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "base/event_signal.h"

#include "base/signal_flag.h"

#include <csignal>

namespace tarn::command {
namespace {

SignalFlag eventCame = false;

}  // namespace

void installEventSignal() {
  struct sigaction action {};
  action.sa_handler = [](int) { eventCame = true; };
  action.sa_flags = static_cast<int>(SA_RESTART);
  sigaction(SIGUSR1, &action, nullptr);
}

bool takeEventSignal() {
  return eventCame.exchange(false);
}

}  // namespace tarn::command
