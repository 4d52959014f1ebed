// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "fleet/broker_options.h"

#include "base/files.h"

#include <CLI/CLI.hpp>

namespace tarn::command {

namespace {

constexpr int greatestPort = 65535;

/** Of "HOST:PORT" or "[ADDRESS]:PORT"; a host with more colons is an address of IPv6 without a port. */
std::size_t colonBeforePort(const std::string& host) {
  const std::size_t colon = host.rfind(':');
  const bool isOnlyColon = host.find(':') == colon;
  const bool isBehindBracket = colon != 0 && colon != std::string::npos && host[colon - 1] == ']';
  return isOnlyColon || isBehindBracket ? colon : std::string::npos;
}

std::string withoutBrackets(const std::string& host) {
  const bool isInBrackets = host.size() > 2 && host.front() == '[' && host.back() == ']';
  return isInBrackets ? host.substr(1, host.size() - 2) : host;
}

std::string problemOf(const std::string& host) {
  const std::size_t colon = colonBeforePort(host);
  if (colon == std::string::npos) {
    return host.empty() ? "the broker's name is empty" : "";
  }
  const std::string port = host.substr(colon + 1);
  constexpr std::size_t mostDigits = 5;
  const bool isNumber = !port.empty() && port.size() <= mostDigits &&
                        port.find_first_not_of("0123456789") == std::string::npos && std::stoi(port) >= 1 &&
                        std::stoi(port) <= greatestPort;
  return colon > 0 && isNumber ? "" : "'" + host + "' is not HOST or HOST:PORT";
}

}  // namespace

std::string BrokerAddress::name() const {
  return "broker " + host + ":" + std::to_string(port);
}

std::vector<BrokerAddress> BrokerOptions::addresses() const {
  constexpr int plain = 1883;
  constexpr int encrypted = 8883;
  std::vector<BrokerAddress> addresses;
  for (const std::string& host : hosts) {
    const std::size_t colon = colonBeforePort(host);
    const int own =
        colon == std::string::npos ? port.value_or(authorities ? encrypted : plain) : std::stoi(host.substr(colon + 1));
    addresses.push_back({withoutBrackets(host.substr(0, colon)), own});
  }
  return addresses;
}

std::optional<std::string> BrokerOptions::password() const {
  if (!passwordFile) {
    return std::nullopt;
  }
  const std::string text = readFile(*passwordFile, "a file whose first line is the password");
  return text.substr(0, text.find_first_of("\r\n"));
}

void addBrokerOptions(CLI::App& command, BrokerOptions& options) {
  constexpr int greatestKeepAlive = 3600;
  command
      .add_option(
          "--host", options.hosts,
          "The broker's name or address, HOST or HOST:PORT; default 127.0.0.1. Of a cluster, several, separated "
          "by commas, which are tried in this order")
      ->type_name("HOST")
      ->delimiter(',')
      ->allow_extra_args(false)
      ->check(CLI::Validator(problemOf, ""));
  command.add_option("--port", options.port, "The broker's port, unless --host has it; default 1883, or 8883 with TLS")
      ->type_name("N")
      ->check(CLI::Range(1, greatestPort));
  CLI::Option* authorities =
      command
          .add_option("--cafile", options.authorities,
                      "Use TLS; the broker's certificate must be signed by one of this file's authorities")
          ->type_name("FILE");
  CLI::Option* certificate =
      command.add_option("--cert", options.certificate, "Certificate of this client")->type_name("FILE");
  CLI::Option* key = command.add_option("--key", options.key, "Private key of the certificate")->type_name("FILE");
  certificate->needs(authorities)->needs(key);
  key->needs(certificate);
  CLI::Option* user = command.add_option("--user", options.user, "Name to log in with")->type_name("NAME");
  command
      .add_option("--password-file", options.passwordFile,
                  "File whose first line is the password, so that no process "
                  "list shows it")
      ->type_name("FILE")
      ->needs(user);
  command
      .add_option("--keepalive", options.keepAlive,
                  "Seconds without an answer after which the connection counts as lost; default 10")
      ->type_name("S")
      ->check(CLI::Range(5, greatestKeepAlive));
}

}  // namespace tarn::command
