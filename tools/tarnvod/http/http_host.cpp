// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "http/http_host.h"

#include <arpa/inet.h>

namespace tarn::command {
namespace {

constexpr int standardPort = 80;

bool isNumericAddress(const std::string& host) {
  in6_addr parsed{};
  return inet_pton(AF_INET, host.c_str(), &parsed) == 1 || inet_pton(AF_INET6, host.c_str(), &parsed) == 1;
}

/** The host without its port and brackets; nothing that is a host when the port is another. */
std::string hostAt(const std::string& requested, int port) {
  const std::string suffix = ':' + std::to_string(port);
  const bool hasPort = requested.size() > suffix.size() &&
                       requested.compare(requested.size() - suffix.size(), suffix.size(), suffix) == 0;
  if (!hasPort && port != standardPort) {
    return "";
  }
  const std::string host = hasPort ? requested.substr(0, requested.size() - suffix.size()) : requested;
  const bool isBracketed = host.size() > 2 && host.front() == '[' && host.back() == ']';
  return isBracketed ? host.substr(1, host.size() - 2) : host;
}

}  // namespace

std::string hostAndPort(const std::string& host, int port) {
  const bool needsBrackets = host.find(':') != std::string::npos;
  return (needsBrackets ? '[' + host + ']' : host) + ':' + std::to_string(port);
}

bool isHostOf(const std::string& requested, const std::string& address, int port) {
  const std::string host = hostAt(requested, port);
  const bool isEveryAddress = address == "0.0.0.0" || address == "::";
  return host == "localhost" || host == address || (isEveryAddress && isNumericAddress(host));
}

}  // namespace tarn::command
