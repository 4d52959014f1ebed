// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "base/event_signal.h"

#include <csignal>

namespace tarn::command {
namespace {

volatile std::sig_atomic_t eventCame = 0;

}  // namespace

void installEventSignal() {
  struct sigaction action {};
  action.sa_handler = [](int) { eventCame = 1; };
  action.sa_flags = static_cast<int>(SA_RESTART);
  sigaction(SIGUSR1, &action, nullptr);
}

bool takeEventSignal() {
  const bool came = eventCame != 0;
  eventCame = 0;
  return came;
}

}  // namespace tarn::command
