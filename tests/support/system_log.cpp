// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "support/system_log.h"

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <cstdarg>
#include <cstdio>
#include <mutex>
#include <stdexcept>
#include <utility>

namespace tarn::test {
namespace {

struct Journal {
  std::mutex mutex;
  std::condition_variable grew;
  std::vector<LogLine> lines;
};

/** Never destroyed: a thread may log until the process ends. */
Journal& journal() {
  static auto& instance = *new Journal;
  return instance;
}

__attribute__((format(printf, 1, 0))) std::string formatted(const char* format, std::va_list arguments) {
  std::va_list again;
  va_copy(again, arguments);
  std::string text(static_cast<std::size_t>(std::vsnprintf(nullptr, 0, format, arguments)), '\0');
  std::vsnprintf(text.data(), text.size() + 1, format, again);
  va_end(again);
  return text;
}

__attribute__((format(printf, 2, 0))) void append(int priority, const char* format, std::va_list arguments) {
  auto& log = journal();
  const std::lock_guard lock(log.mutex);
  log.lines.push_back({priority, formatted(format, arguments)});
  log.grew.notify_all();
}

}  // namespace

bool operator==(const LogLine& left, const LogLine& right) {
  return left.priority == right.priority && left.text == right.text;
}

std::ostream& operator<<(std::ostream& out, const LogLine& line) {
  return out << "LogLine{priority: " << line.priority << ", text: \"" << line.text << "\"}";
}

SystemLog::SystemLog() {
  auto& log = journal();
  const std::lock_guard lock(log.mutex);
  log.lines.clear();
}

std::vector<LogLine> SystemLog::lines() const {
  auto& log = journal();
  const std::lock_guard lock(log.mutex);
  return log.lines;
}

std::vector<LogLine> SystemLog::takeLines() {
  auto& log = journal();
  const std::lock_guard lock(log.mutex);
  return std::exchange(log.lines, {});
}

std::size_t SystemLog::count(const LogLine& line) const {
  const auto all = lines();
  return static_cast<std::size_t>(std::count(all.begin(), all.end(), line));
}

std::vector<LogLine> SystemLog::waitForLines(std::size_t number) const {
  auto& log = journal();
  std::unique_lock lock(log.mutex);
  if (!log.grew.wait_for(lock, std::chrono::seconds(30), [&] { return log.lines.size() >= number; })) {
    throw std::runtime_error("the system log did not reach " + std::to_string(number) + " lines");
  }
  return log.lines;
}

}  // namespace tarn::test

// The two entry points of the C library: the plain one, and the one that optimised code calls instead.
extern "C" {

__attribute__((format(printf, 2, 3))) void syslog(int priority, const char* format, ...) {
  std::va_list arguments;
  va_start(arguments, format);
  tarn::test::append(priority, format, arguments);
  va_end(arguments);
}

__attribute__((format(printf, 3, 4))) void __syslog_chk(int priority, int /*flag*/, const char* format, ...) {
  std::va_list arguments;
  va_start(arguments, format);
  tarn::test::append(priority, format, arguments);
  va_end(arguments);
}

}  // extern "C"
