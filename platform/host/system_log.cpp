// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

// On a PC nobody may read the system log, and in a container there is often none: what the process writes to it then
// appears on standard error too.

#include "replay/environment.h"

#include <sys/stat.h>
#include <syslog.h>

#include <stdexcept>

namespace vod::host {

namespace {

bool systemLogExists() {
  struct stat status {};
  return ::stat("/dev/log", &status) == 0 && S_ISSOCK(status.st_mode);
}

LogDestination logDestination() {
  try {
    if (const auto chosen = readLogDestination()) {
      return *chosen;
    }
  } catch (const std::invalid_argument&) {
    // Reported by the first call that needs the environment.
  }
  return systemLogExists() ? LogDestination::SystemLog : LogDestination::SystemLogAndStandardError;
}

/**
 * Runs when the library is loaded, before the application's own code, so that an application's call of `openlog`
 * overrides it. Sets neither an identifier nor a facility.
 */
[[gnu::constructor]] void openSystemLog() {
  if (logDestination() == LogDestination::SystemLogAndStandardError) {
    ::openlog(nullptr, LOG_PERROR, 0);
  }
}

}  // namespace

}  // namespace vod::host
