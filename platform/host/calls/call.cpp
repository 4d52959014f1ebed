// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "calls/call_journal.h"
#include "messages/scene_filter.h"

#include <array>
#include <iomanip>
#include <ostream>
#include <sstream>
#include <string_view>

namespace vod::host {

namespace {

/** The part of a C name that follows the longest prefix that the C functions share. */
constexpr const char* withoutPrefix(std::string_view cName) {
  for (const std::string_view prefix : {"video_object_detection_subscriber_", "video_object_detection_"}) {
    if (cName.substr(0, prefix.size()) == prefix) {
      return cName.substr(prefix.size()).data();
    }
  }
  return cName.data();
}

#define NAME(enumerator, function) withoutPrefix(#function),
constexpr std::array<const char*, everyFunction.size()> names = {VOD_HOST_FUNCTIONS(NAME)};
#undef NAME

std::string configurationText(const std::string& bytes) {
  std::ostringstream out;
  const auto configuration = readChannelConfiguration(bytes);
  if (configuration && configuration->region) {
    const Region& roi = *configuration->region;
    out << "roi=[" << roi.left << ", " << roi.top << ", " << roi.right << ", " << roi.bottom << ']';
    return out.str();
  }
  out << "bytes=" << std::hex << std::setfill('0');
  for (const char byte : bytes) {
    out << std::setw(2) << static_cast<unsigned>(static_cast<unsigned char>(byte));
  }
  return out.str();
}

}  // namespace

const char* name(Function function) {
  return names.at(static_cast<std::size_t>(function));
}

std::ostream& operator<<(std::ostream& out, Function function) {
  return out << name(function);
}

std::string Call::text() const {
  std::string arguments = handle;
  const auto add = [&arguments](const std::string& argument) {
    arguments += (arguments.empty() ? "" : ", ") + argument;
  };
  if (channel) {
    add("channel=" + std::to_string(*channel));
  }
  if (flag) {
    add(*flag ? "true" : "false");
  }
  if (function == Function::SetChannelConfiguration) {
    add(configurationText(bytes));
  }
  return std::string(name(function)) + '(' + arguments + ')';
}

std::ostream& operator<<(std::ostream& out, const Call& call) {
  return out << call.text();
}

std::string lines(const std::vector<Call>& calls) {
  std::string text;
  for (const Call& call : calls) {
    text += call.text() + '\n';
  }
  return text;
}

}  // namespace vod::host
