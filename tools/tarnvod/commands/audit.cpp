// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "fleet/audit.h"

#include "base/clock.h"
#include "base/errors.h"
#include "base/output.h"
#include "base/stop_signal.h"
#include "base/text.h"
#include "base/unit_options.h"
#include "base/wall_clock.h"
#include "commands/subcommands.h"
#include "fleet/account_text.h"
#include "fleet/broker.h"
#include "fleet/collection_database.h"
#include "fleet/fleet_options.h"
#include "fleet/live_accounts.h"
#include "fleet/topics.h"

#include <CLI/CLI.hpp>

#include <chrono>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace tarn::command {
namespace {

constexpr std::chrono::seconds livePeriod{10};
constexpr std::chrono::milliseconds tick{100};

struct AuditCommand {
  std::string database;
  bool json = false;
  bool fromFirstStored = false;
  std::optional<std::uint64_t> late;
  bool isLive = false;
  std::string site;
  std::optional<std::uint64_t> duration;
  BrokerOptions broker;
};

/** The refusals of the collector. */
Refusals refusals(const Database& database) {
  Refusals counts;
  Statement rows(database, "SELECT reason, count FROM refused ORDER BY reason");
  for (rows.start(); rows.next();) {
    counts[rows.text(0)] = static_cast<std::uint64_t>(rows.number(1));
  }
  return counts;
}

AuditOptions auditOptions(const AuditCommand& command) {
  AuditOptions options;
  options.late = static_cast<std::int64_t>(command.late.value_or(static_cast<std::uint64_t>(options.late)));
  options.fromFirstStored = command.fromFirstStored;
  return options;
}

void print(const AuditCommand& command, const std::vector<CameraAccount>& accounts, const Refusals& refusals) {
  command.json ? standardOutput().write(accountsJson(accounts, refusals))
               : standardOutput().writeText(accountsText(accounts, refusals));
}

int auditDatabase(const AuditCommand& command) {
  const std::unique_ptr<Database> opened = openCollection(command.database, Database::Access::Read);
  const Database& database = *opened;
  const std::vector<CameraAccount> accounts = audit(database, auditOptions(command));
  print(command, accounts, refusals(database));
  if (accounts.empty()) {
    throw Failure(command.database + ": holds no frames");
  }
  return areInOrder(accounts) ? success : failure;
}

void reportRefusal(std::string_view topic, const std::string& reason) {
  printMessage("tarnvod: refused a message on " + printable(cut(printable(topic), 80)) + ": " + reason);
}

/** Listens to the broker until the command shall end, or the connection is lost. */
int auditLive(const AuditCommand& command) {
  LiveAccounts accounts(auditOptions(command));
  Broker broker(
      command.broker, {"tarnvod-audit-" + newStartId(), false, std::nullopt},
      [&](const BrokerMessage& message) {
        if (const auto reason = accounts.take(message.topic, message.payload, wallTimeNow().microseconds)) {
          reportRefusal(message.topic, *reason);
        }
      },
      [](int) {});
  broker.connect(stopRequested);
  broker.subscribe(fleetTopics(command.site), stopRequested);
  printMessage("tarnvod: " + broker.name() + ": connected");
  const Clock::time_point begin = Clock::now();
  for (Clock::time_point printed = begin; !stopRequested() && broker.isConnected();) {
    const Clock::time_point now = Clock::now();
    if (command.duration && now - begin >= std::chrono::microseconds(*command.duration)) {
      break;
    }
    if (now - printed >= livePeriod) {
      printed = now;
      print(command, accounts.accounts(), accounts.refused());
    }
    broker.wait(tick);
  }
  const std::vector<CameraAccount> booked = accounts.accounts();
  print(command, booked, accounts.refused());
  if (!stopRequested() && !broker.isConnected()) {
    throw Failure(broker.name() + ": " + broker.problem() + "; what came since is not in the accounts");
  }
  if (booked.empty()) {
    throw Failure(broker.name() + ": no frames came");
  }
  return areInOrder(booked) ? success : failure;
}

int runAudit(const AuditCommand& command) {
  if (command.isLive != command.database.empty()) {
    throw UsageError(command.isLive ? "--live takes no database" : "name the database of a collector, or use --live");
  }
  if (command.duration && !command.isLive) {
    throw UsageError("--for needs --live");
  }
  return command.isLive ? auditLive(command) : auditDatabase(command);
}

}  // namespace

Action defineAudit(CLI::App& command) {
  const auto options = std::make_shared<AuditCommand>();
  command.add_option("database", options->database, "The database of a collector: a file, or postgresql://...")
      ->type_name("FILE|URL");
  command.add_flag("--json", options->json, "Print the accounts as a JSON object");
  addDuration(command, "--late", options->late,
              "Time from a frame's arrival to its storage above which it is late (default 10s)");
  command.add_flag("--from-first", options->fromFirstStored,
                   "Do not count what a device numbered before its first frame that is stored");
  CLI::Option* live = command.add_flag("--live", options->isLive,
                                       "Account for what the broker passes on from now on, instead of a database");
  addFleetName(command, "--site", options->site, "Live: only this site (default: all)")->needs(live);
  addDuration(command, "--for", options->duration,
              "Live: end after this time, like 10m (default: when a signal comes)");
  addBrokerOptions(command, options->broker);
  return [options] { return runAudit(*options); };
}

}  // namespace tarn::command
