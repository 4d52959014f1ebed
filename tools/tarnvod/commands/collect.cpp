// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "base/errors.h"
#include "base/output.h"
#include "commands/subcommands.h"
#include "fleet/collector.h"
#include "fleet/fleet_options.h"
#include "metrics/metrics_server.h"

#include <CLI/CLI.hpp>

#include <memory>

namespace tarn::command {
namespace {

int collect(const CollectorOptions& options) {
  Collector collector(options);
  collector.run();
  printMessage("tarnvod: " + collector.summary());
  return success;
}

}  // namespace

Action defineCollect(CLI::App& command) {
  const auto options = std::make_shared<CollectorOptions>();
  command
      .add_option("database", options->database,
                  "The SQLite database, made if it does not exist; or a PostgreSQL database, postgresql://...")
      ->type_name("FILE|URL")
      ->required();
  addFleetName(command, "--site", options->site, "Only this site (default: all)");
  addFleetName(command, "--name", options->name,
               "Name of this collector; the broker keeps messages for it while it is away (default: collector)");
  addMetricsOption(command, options->metrics);
  addBrokerOptions(command, options->broker);
  return [options] { return collect(*options); };
}

}  // namespace tarn::command
