// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#ifndef TARNVOD_TESTS_TOOLS_TARNVOD_FLEET_A_FLEET_H
#define TARNVOD_TESTS_TOOLS_TARNVOD_FLEET_A_FLEET_H

#include "fleet.h"

#include <chrono>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

namespace test {

/** A device with two cameras, a collector's database, and a broker that has not been started. */
class AFleet : public TwoCameras {
 protected:
  AFleet() : broker(folder / "") {}

  std::vector<std::string> with(const std::string& subcommand, std::vector<std::string> more) const {
    std::vector<std::string> arguments{subcommand};
    const auto found = broker.options();
    arguments.insert(arguments.end(), found.begin(), found.end());
    arguments.insert(arguments.end(), more.begin(), more.end());
    return arguments;
  }

  std::vector<std::string> publishing(std::vector<std::string> more) const {
    more.insert(more.begin(), {"--site", "north", "--device", "gate", "--spool", folder / "spool"});
    return with("publish", more);
  }

  Outcome publish(const std::vector<std::string>& more) const { return run(publishing(more), playing("20")); }

  std::string database() const { return folder / "fleet.db"; }

  /** A collector that is connected. */
  std::unique_ptr<Process> collector() const {
    auto process = std::make_unique<Process>(command(), with("collect", {database()}));
    process->waitForErrors(": connected\n");
    return process;
  }

  nlohmann::json audit() const {
    const Outcome outcome = run({"audit", database(), "--json"});
    return outcome.output.empty() ? nlohmann::json() : nlohmann::json::parse(outcome.output);
  }

  /** Waits until the collector has stored so many frames of camera 1. */
  void waitUntilStored(int frames) const {
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(60);
    while (true) {
      const nlohmann::json accounts = audit();
      if (!accounts.is_null() && !accounts["cameras"].empty() && accounts["cameras"][0]["stored"] >= frames) {
        return;
      }
      if (std::chrono::steady_clock::now() > deadline) {
        throw std::runtime_error("timed out waiting for frames to be stored: " + accounts.dump());
      }
    }
  }

  BrokerProcess broker;
};

}  // namespace test

#endif
