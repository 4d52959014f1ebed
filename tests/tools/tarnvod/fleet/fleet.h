// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#ifndef TARNVOD_TESTS_TOOLS_TARNVOD_FLEET_FLEET_H
#define TARNVOD_TESTS_TOOLS_TARNVOD_FLEET_FLEET_H

#include "fleet/broker.h"

#include <nlohmann/json.hpp>
#include <tools/tarnvod/process.h>
#include <tools/tarnvod/situations.h>

#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <vector>

/** A broker of the tests' own, and what listens to it. */
namespace test {

/** A port that the system had free; it gives others to the next that ask. */
int freePort();

/** A Mosquitto broker at a free port of 127.0.0.1; killed at the end. */
class BrokerProcess {
 public:
  /** @param settings  lines of its configuration in addition to the usual ones; without a listener of their own */
  explicit BrokerProcess(const std::filesystem::path& folder, const std::string& settings = "allow_anonymous true\n");

  /** Fails the test when Mosquitto is not installed. */
  void start();
  void kill();
  /** Stops to answer, as on a network that is cut, until it goes on. */
  void pause();
  void goOn();

  int port() const { return port_; }
  /** Options of the command with which it finds this broker. */
  std::vector<std::string> options() const { return {"--port", std::to_string(port_)}; }

 private:
  const int port_;
  const std::filesystem::path configuration_;
  std::unique_ptr<Process> process_;
};

/** A client that subscribes to all topics of a fleet and keeps what it receives. */
class Listener {
 public:
  struct Message {
    std::string topic;
    std::string text;
    nlohmann::json json;  ///< null if the text is not JSON
  };

  explicit Listener(int port);

  /** Receives until the condition holds. Throws after a long time. */
  void waitUntil(const std::function<bool()>& condition);
  /** Receives until the status of a device has this state. */
  void waitForState(const std::string& state);
  void publish(const std::string& topic, const std::string& payload, bool isRetained = false);

  const std::vector<Message>& messages() const { return messages_; }
  /** The sequence numbers of a camera's frames, in the order in which they came. */
  std::vector<int> sequences(int camera = 1) const;
  /** All messages as lines. */
  std::string lines() const;

 private:
  std::vector<Message> messages_;
  tarn::command::Broker broker_;
};

}  // namespace test

#endif
