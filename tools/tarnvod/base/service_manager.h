// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#ifndef TARNVOD_COMMAND_SERVICE_MANAGER_H
#define TARNVOD_COMMAND_SERVICE_MANAGER_H

#include "base/clock.h"

#include <string>

namespace tarn::command {

/** What a unit of systemd with `Type=notify` hears; without systemd, its functions do nothing. */
class ServiceManager {
 public:
  /** Reads the environment: where to report to, and how often the watchdog wants a sign of life. */
  ServiceManager();

  void reportReady();
  /** To be called often; sends a sign of life when one is due. */
  void reportAlive(Clock::time_point now);

 private:
  void send(const std::string& message) const;

  std::string socket_;
  Clock::duration period_{0};  ///< 0 for no watchdog
  Clock::time_point sentAt_;
};

}  // namespace tarn::command

#endif
