// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "fleet/audit.h"

#include "base/errors.h"
#include "base/output.h"
#include "base/text.h"
#include "base/unit_options.h"
#include "commands/subcommands.h"
#include "fleet/collection_database.h"
#include "records/json.h"

#include <CLI/CLI.hpp>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <array>
#include <cstdint>
#include <ctime>
#include <iterator>
#include <memory>
#include <numeric>
#include <optional>
#include <string>
#include <vector>

namespace tarn::command {
namespace {

struct AuditCommand {
  std::string database;
  bool json = false;
  bool fromFirstStored = false;
  std::optional<std::uint64_t> late;
};

/** The refusals of the collector, by reason. */
Json refusals(const Database& database) {
  Json counts = Json::object();
  Statement rows(database, "SELECT reason, count FROM refused ORDER BY reason");
  for (rows.start(); rows.next();) {
    counts[rows.text(0)] = rows.number(1);
  }
  return counts;
}

Json toJson(const CameraAccount& account) {
  Json ranges = Json::array();
  for (const FrameRange& range : account.missingFrames) {
    ranges.push_back({{"start", range.start}, {"first", range.first}, {"last", range.last}});
  }
  return {{"site", account.site},
          {"device", account.device},
          {"camera", account.camera},
          {"starts", account.starts},
          {"numbered", account.numbered},
          {"stored", account.stored},
          {"dropped", account.dropped},
          {"waiting", account.waiting},
          {"missing", account.missing},
          {"late", account.late},
          {"repeated", account.repeated},
          {"conflicting", account.conflicting},
          {"missingSince", account.missingSince ? Json(*account.missingSince) : Json(nullptr)},
          {"missingFrames", std::move(ranges)}};
}

/** "2026-01-31T12:00:00Z". */
std::string utcText(std::int64_t microseconds) {
  const std::time_t seconds = microseconds / 1'000'000;
  std::tm parts{};
  std::array<char, 32> text{};
  gmtime_r(&seconds, &parts);
  return {text.data(), std::strftime(text.data(), text.size(), "%Y-%m-%dT%H:%M:%SZ", &parts)};
}

std::string since(const CameraAccount& account) {
  if (account.missing == 0) {
    return "";
  }
  return account.missingSince ? utcText(*account.missingSince) : "the start";
}

std::string table(const std::vector<CameraAccount>& accounts) {
  constexpr std::size_t column = 11;
  std::string text = fitted("camera", 2 * column);
  for (const char* head : {"numbered", "stored", "dropped", "waiting", "missing", "late", "repeated", "conflicting"}) {
    text += ' ' + fittedRight(head, column);
  }
  text += " missing since\n";
  for (const CameraAccount& account : accounts) {
    text += fitted(account.site + '/' + account.device + '/' + std::to_string(account.camera), 2 * column);
    for (const std::uint64_t count : {account.numbered, account.stored, account.dropped, account.waiting,
                                      account.missing, account.late, account.repeated, account.conflicting}) {
      text += ' ' + fittedRight(std::to_string(count), column);
    }
    text += ' ' + since(account) + '\n';
  }
  return text;
}

int runAudit(const AuditCommand& command) {
  const std::unique_ptr<Database> opened = openCollection(command.database, Database::Access::Read);
  const Database& database = *opened;
  AuditOptions options;
  options.late = static_cast<std::int64_t>(command.late.value_or(static_cast<std::uint64_t>(options.late)));
  options.fromFirstStored = command.fromFirstStored;
  const std::vector<CameraAccount> accounts = audit(database, options);
  const auto missing = std::accumulate(accounts.begin(), accounts.end(), std::uint64_t{0},
                                       [](std::uint64_t sum, const auto& each) { return sum + each.missing; });
  const auto conflicting = std::accumulate(accounts.begin(), accounts.end(), std::uint64_t{0},
                                           [](std::uint64_t sum, const auto& each) { return sum + each.conflicting; });
  if (command.json) {
    Json cameras = Json::array();
    std::transform(accounts.begin(), accounts.end(), std::back_inserter(cameras),
                   [](const CameraAccount& account) { return toJson(account); });
    standardOutput().write(oneLine({{"cameras", std::move(cameras)}, {"refused", refusals(database)}}));
  } else {
    standardOutput().writeText(table(accounts));
    const Json counts = refusals(database);
    for (const auto& [reason, count] : counts.items()) {
      standardOutput().writeText("refused: " + counted(count.get<std::uint64_t>(), "message") + ", " + reason + '\n');
    }
  }
  if (accounts.empty()) {
    throw Failure(command.database + ": holds no frames");
  }
  return missing == 0 && conflicting == 0 ? success : failure;
}

}  // namespace

Action defineAudit(CLI::App& command) {
  const auto options = std::make_shared<AuditCommand>();
  command.add_option("database", options->database, "The database of a collector: a file, or postgresql://...")
      ->type_name("FILE|URL")
      ->required();
  command.add_flag("--json", options->json, "Print the accounts as a JSON object");
  addDuration(command, "--late", options->late,
              "Time from a frame's arrival to its storage above which it is late (default 10s)");
  command.add_flag("--from-first", options->fromFirstStored,
                   "Do not count what a device numbered before its first frame that is stored");
  return [options] { return runAudit(*options); };
}

}  // namespace tarn::command
