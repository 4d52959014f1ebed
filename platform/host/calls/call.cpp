// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "calls/call_journal.h"
#include "messages/scene_filter.h"

#include <array>
#include <iomanip>
#include <ostream>
#include <sstream>

namespace vod::host {

namespace {

constexpr std::array<const char*, functionCount> names = {"create",
                                                          "delete",
                                                          "subscribe",
                                                          "unsubscribe",
                                                          "set_get_detection_callback",
                                                          "set_teardown_callback",
                                                          "set_receive_empty_hits",
                                                          "use_channel_configuration",
                                                          "set_channel_configuration",
                                                          "get_information",
                                                          "get_nbr_channels",
                                                          "get_nbr_channels_simultaneously",
                                                          "get_version",
                                                          "service_is_enabled"};

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
