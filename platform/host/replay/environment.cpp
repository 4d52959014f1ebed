// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "replay/environment.h"

#include "recording/session.h"
#include "replay/installed_recordings.h"

#include <charconv>
#include <cmath>
#include <cstdlib>
#include <stdexcept>
#include <string_view>

namespace vod::host {

namespace {

[[noreturn]] void refuse(const char* variable, const std::string& value, const char* expected) {
  throw std::invalid_argument(std::string(variable) + " is \"" + value + "\"; it must be " + expected);
}

/** Returns null when it is not set. */
const char* variable(const char* name) {
  return std::getenv(name);  // NOLINT(concurrency-mt-unsafe): unsafe only while another thread changes the environment
}

std::vector<std::string> readFolders() {
  const char* const value = variable("TARNVOD_HOST_RECORDINGS");
  if (value == nullptr) {
    return installedRecordings();
  }
  std::vector<std::string> folders;
  const std::string_view list = value;
  for (std::size_t begin = 0; begin <= list.size();) {
    const std::size_t end = std::min(list.find(':', begin), list.size());
    if (begin == end) {
      refuse("TARNVOD_HOST_RECORDINGS", value, "folders separated by colons, none of them empty");
    }
    folders.emplace_back(list.substr(begin, end - begin));
    begin = end + 1;
  }
  return folders;
}

std::optional<double> readPace() {
  const char* const value = variable("TARNVOD_HOST_PACE");
  if (value == nullptr) {
    return 1.0;
  }
  const std::string_view text = value;
  if (text == "max") {
    return std::nullopt;
  }
  double pace = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), pace);
  if (error != std::errc() || end != text.data() + text.size() || !std::isfinite(pace) || pace <= 0) {
    refuse("TARNVOD_HOST_PACE", value, "a positive number or \"max\"");
  }
  return pace;
}

bool readLoop() {
  const char* const value = variable("TARNVOD_HOST_LOOP");
  const std::string_view text = value == nullptr ? "1" : value;
  if (text != "0" && text != "1") {
    refuse("TARNVOD_HOST_LOOP", value, "0 or 1");
  }
  return text == "1";
}

/** The path of a file; none if it is not set. */
std::optional<std::string> readPath(const char* name) {
  const char* const value = variable(name);
  if (value == nullptr) {
    return std::nullopt;
  }
  if (*value == '\0') {
    refuse(name, value, "the path of a file");
  }
  return value;
}

}  // namespace

std::optional<LogDestination> readLogDestination() {
  const char* const value = variable("TARNVOD_HOST_LOG");
  if (value == nullptr) {
    return std::nullopt;
  }
  const std::string_view text = value;
  if (text != "stderr" && text != "syslog") {
    refuse("TARNVOD_HOST_LOG", value, R"("stderr" or "syslog")");
  }
  return text == "stderr" ? LogDestination::SystemLogAndStandardError : LogDestination::SystemLog;
}

std::vector<std::string> Environment::folders() const {
  std::vector<std::string> all;
  for (const PlayedTogether& stream : streams) {
    all.insert(all.end(), stream.begin(), stream.end());
  }
  return all;
}

Environment readEnvironment() {
  static_cast<void>(readLogDestination());  // It has been applied when the library was loaded; here it is checked.
  std::vector<PlayedTogether> streams;
  for (const std::string& folder : readFolders()) {
    const auto cameras = recording::camerasOf(folder);
    streams.push_back(cameras.empty() ? PlayedTogether{folder} : PlayedTogether(cameras.begin(), cameras.end()));
  }
  return {std::move(streams), {readPace(), readLoop()}};
}

RehearsalFiles readRehearsalFiles() {
  return {readPath("TARNVOD_HOST_SCHEDULE"), readPath("TARNVOD_HOST_JOURNAL")};
}

}  // namespace vod::host
