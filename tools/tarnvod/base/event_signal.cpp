// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "base/event_signal.h"

#include <atomic>
#include <csignal>

namespace tarn::command {
namespace {

// The handler runs on whichever thread the system chooses.
std::atomic<bool> eventCame = false;
static_assert(std::atomic<bool>::is_always_lock_free, "may be used in a signal handler");

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
