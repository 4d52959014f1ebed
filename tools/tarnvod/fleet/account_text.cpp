// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "fleet/account_text.h"

#include "base/text.h"
#include "records/json.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <array>
#include <ctime>
#include <iterator>
#include <utility>

namespace tarn::command {
namespace {

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
  const auto seconds = static_cast<std::time_t>(microseconds / 1'000'000);  // 32 bits on some devices
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

}  // namespace

std::string accountsText(const std::vector<CameraAccount>& accounts, const Refusals& refusals) {
  std::string text = table(accounts);
  for (const auto& [reason, count] : refusals) {
    text += "refused: " + counted(count, "message") + ", " + reason + '\n';
  }
  return text;
}

std::string accountsJson(const std::vector<CameraAccount>& accounts, const Refusals& refusals) {
  Json cameras = Json::array();
  std::transform(accounts.begin(), accounts.end(), std::back_inserter(cameras),
                 [](const CameraAccount& account) { return toJson(account); });
  Json refused = Json::object();
  for (const auto& [reason, count] : refusals) {
    refused[reason] = count;
  }
  return oneLine({{"cameras", std::move(cameras)}, {"refused", std::move(refused)}});
}

bool areInOrder(const std::vector<CameraAccount>& accounts) {
  return std::all_of(accounts.begin(), accounts.end(),
                     [](const CameraAccount& each) { return each.missing == 0 && each.conflicting == 0; });
}

}  // namespace tarn::command
