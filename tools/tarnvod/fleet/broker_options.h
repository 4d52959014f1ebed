// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#ifndef TARNVOD_COMMAND_BROKER_OPTIONS_H
#define TARNVOD_COMMAND_BROKER_OPTIONS_H

#include <optional>
#include <string>
#include <vector>

namespace CLI {
class App;
}

namespace tarn::command {

/** Where a broker listens. */
struct BrokerAddress {
  std::string host;
  int port = 0;

  /** "broker HOST:PORT", for messages. */
  std::string name() const;
};

/** How to reach an MQTT broker, or one of several that serve the same sessions. */
struct BrokerOptions {
  std::vector<std::string> hosts{"127.0.0.1"};  ///< names or addresses, each with ":PORT" if it has one of its own
  std::optional<int> port;                      ///< 8883 with TLS, 1883 without, where none is given
  std::optional<std::string> authorities;       ///< file with the certificates that are trusted; with it, TLS is used
  std::optional<std::string> certificate;       ///< of this client
  std::optional<std::string> key;               ///< of this client's certificate
  std::optional<std::string> user;
  std::optional<std::string> passwordFile;  ///< its first line is the password
  int keepAlive = 10;                       ///< seconds

  /** In the order in which they are tried; one at least. */
  std::vector<BrokerAddress> addresses() const;
  /** @throw Failure when the file cannot be read */
  std::optional<std::string> password() const;
};

void addBrokerOptions(CLI::App& command, BrokerOptions& options);

}  // namespace tarn::command

#endif
