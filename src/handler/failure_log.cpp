// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "handler/failure_log.h"

#include <syslog.h>

namespace tarn::VOD {

void FailureLog::add(const char* failure) {
  if (failures_ == 0) {
    syslog(LOG_INFO, "%s\n", failure);
  } else if (failures_ % failuresBetweenWarnings == 0) {
    syslog(LOG_WARNING, "%s\n", failure);
  }
  failures_ = countAfterFailure(failures_);
}

}  // namespace tarn::VOD
