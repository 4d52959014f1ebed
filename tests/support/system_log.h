// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#ifndef TARNVOD_TESTS_SUPPORT_SYSTEM_LOG_H
#define TARNVOD_TESTS_SUPPORT_SYSTEM_LOG_H

#include <syslog.h>

#include <cstddef>
#include <ostream>
#include <string>
#include <vector>

namespace tarn::test {

struct LogLine {
  int priority;
  std::string text;
};

bool operator==(const LogLine& left, const LogLine& right);
std::ostream& operator<<(std::ostream& out, const LogLine& line);

/**
 * What the process has sent to the system log since this object was made. The program defines `syslog` itself, so
 * nothing reaches the real log. One object at a time; all functions may be called from any thread.
 */
class SystemLog {
 public:
  SystemLog();

  /** All lines so far, in order. */
  std::vector<LogLine> lines() const;

  /** The same, and forgets them. */
  std::vector<LogLine> takeLines();

  /** How often this line was logged. */
  std::size_t count(const LogLine& line) const;

  /** Waits until there are this many lines and returns them all; throws `std::runtime_error` when they do not come. */
  std::vector<LogLine> waitForLines(std::size_t number) const;
};

}  // namespace tarn::test

#endif
