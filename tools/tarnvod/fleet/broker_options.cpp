// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "fleet/broker_options.h"

#include "base/files.h"

#include <CLI/CLI.hpp>

namespace tarn::command {

int BrokerOptions::usedPort() const {
  constexpr int plain = 1883;
  constexpr int encrypted = 8883;
  return port.value_or(authorities ? encrypted : plain);
}

std::string BrokerOptions::name() const {
  return "broker " + host + ":" + std::to_string(usedPort());
}

std::optional<std::string> BrokerOptions::password() const {
  if (!passwordFile) {
    return std::nullopt;
  }
  const std::string text = readFile(*passwordFile, "a file whose first line is the password");
  return text.substr(0, text.find_first_of("\r\n"));
}

void addBrokerOptions(CLI::App& command, BrokerOptions& options) {
  constexpr int greatestPort = 65535;
  constexpr int greatestKeepAlive = 3600;
  command.add_option("--host", options.host, "The broker's name or address; default 127.0.0.1")->type_name("HOST");
  command.add_option("--port", options.port, "The broker's port; default 1883, or 8883 with TLS")
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
