// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

// Runs a planted application until it receives SIGTERM.

#include "planted.h"

#include <csignal>

int main() {
  // Before the application starts threads, which receive it otherwise.
  sigset_t signals;
  sigemptyset(&signals);
  sigaddset(&signals, SIGTERM);
  pthread_sigmask(SIG_BLOCK, &signals, nullptr);

  startApplication();
  int received = 0;
  sigwait(&signals, &received);
  stopApplication();
}
