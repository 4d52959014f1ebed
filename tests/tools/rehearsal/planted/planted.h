// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#ifndef TARNVOD_TESTS_REHEARSAL_PLANTED_H
#define TARNVOD_TESTS_REHEARSAL_PLANTED_H

#include <tarnvod/tarnvod.h>

#include <csignal>

/** Applications with one mistake each, which a rehearsal has to find. */
namespace planted {

/** Receives SIGTERM instead of all other threads; made before them. */
class StopSignal {
 public:
  StopSignal() {
    sigemptyset(&signals_);
    sigaddset(&signals_, SIGTERM);
    pthread_sigmask(SIG_BLOCK, &signals_, nullptr);
  }
  void wait() const {
    int received = 0;
    sigwait(&signals_, &received);
  }

 private:
  sigset_t signals_{};
};

}  // namespace planted

#endif
