// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#ifndef TARNVOD_TESTS_TOOLS_TARNVOD_LATE_SERVICE_H
#define TARNVOD_TESTS_TOOLS_TARNVOD_LATE_SERVICE_H

#include "situations.h"

#include <string>

namespace test {

/** Two cameras whose service is down at first. */
class ALateService : public TwoCameras {
 protected:
  /** @param time  how long it is down, such as "1h" */
  Environment lateBy(const std::string& time) const {
    const std::string schedule = folder / "late.schedule";
    writeTo(schedule, "length " + time + "\nat 0s down for " + time + '\n');
    Environment environment = playing();
    environment.push_back("TARNVOD_HOST_SCHEDULE=" + schedule);
    return environment;
  }
};

}  // namespace test

#endif
