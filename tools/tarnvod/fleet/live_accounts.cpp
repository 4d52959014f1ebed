// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "fleet/live_accounts.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <variant>

namespace tarn::command {
namespace {

/** What strangers can make this process keep. */
constexpr std::size_t mostSources = 10'000;
constexpr std::size_t mostRanges = 10'000;
/** As for a collector. */
constexpr std::uint64_t farthest = 10'000'000;

void checkNumber(const NumberSet& numbers, std::uint64_t number) {
  if (!numbers.isEmpty() && number > numbers.highest() + farthest) {
    throw Refusal("a number that cannot be the camera's");
  }
  if (numbers.ranges() >= mostRanges) {
    throw Refusal("too many gaps");
  }
}

}  // namespace

std::optional<std::string> LiveAccounts::take(std::string_view topic, std::string_view payload, std::int64_t now) {
  try {
    std::visit([&](const auto& message) { add(message, now); }, readMessage(topic, payload));
  } catch (const Refusal& refusal) {
    if (++refused_[refusal.what()] == 1) {
      return refusal.what();
    }
  }
  return std::nullopt;
}

LiveAccounts::Source& LiveAccounts::sourceOf(const Origin& origin, int camera) {
  const Key key{origin.site, origin.device, camera};
  if (const auto found = cameras_.find(key); found != cameras_.end()) {
    Starts& starts = found->second;
    const auto source =
        std::find_if(starts.begin(), starts.end(), [&](const Source& each) { return each.start == origin.start; });
    if (source != starts.end()) {
      return *source;
    }
  }
  if (sources_ >= mostSources) {
    throw Refusal("too many cameras");
  }
  ++sources_;
  Source& source = cameras_[key].emplace_back();
  source.start = origin.start;
  return source;
}

void LiveAccounts::add(const CollectedFrame& frame, std::int64_t now) {
  const Envelope& envelope = frame.envelope;
  Source& source = sourceOf(frame.origin, envelope.camera);
  checkNumber(source.accountedFor, envelope.sequence);
  if (!source.accountedFor.isEmpty() && envelope.sequence > source.accountedFor.highest() + 1 && !source.gapSince) {
    source.gapSince = source.latestArrival;
  }
  if (source.received.add(envelope.sequence, envelope.sequence) == 0) {
    ++source.repeated;
    return;
  }
  source.accountedFor.add(envelope.sequence, envelope.sequence);
  source.latestArrival = envelope.arrival;
  source.late += envelope.clockSet && now - envelope.arrival > options_.late ? 1U : 0U;
}

void LiveAccounts::add(const CollectedNote& note, std::int64_t /*now*/) {
  Source& source = sourceOf(note.origin, note.frames.camera);
  checkNumber(source.accountedFor, note.frames.last);
  source.accountedFor.add(note.frames.first, note.frames.last);
}

void LiveAccounts::add(const CollectedStatus& status, std::int64_t /*now*/) {
  // All of it is checked before any of it is booked.
  for (const CollectedCamera& camera : status.cameras) {
    checkNumber(sourceOf(status.origin, camera.camera).accountedFor, camera.numbered);
  }
  for (const CollectedCamera& camera : status.cameras) {
    Source& source = sourceOf(status.origin, camera.camera);
    source.numbered = std::max(source.numbered, camera.numbered);
  }
  devices_[{status.origin.site, status.origin.device}] = {status.origin.start, status.state != "stopped"};
}

bool LiveAccounts::isRunning(const Key& camera, const Source& source) const {
  const auto device = devices_.find({std::get<0>(camera), std::get<1>(camera)});
  return device == devices_.end() || device->second == std::pair(source.start, true);
}

void LiveAccounts::book(CameraAccount& account, const Source& source, bool isFirst) const {
  const NumberSet& known = source.accountedFor;
  if (known.isEmpty() && isFirst) {
    return;  // it was numbered before anybody listened
  }
  ++account.starts;
  const bool runs = isRunning({account.site, account.device, account.camera}, source);
  const std::uint64_t last = runs ? known.highest() : std::max(known.highest(), source.numbered);
  for (const auto& [begin, end] : known.gaps(isFirst ? known.lowest() : 1, last)) {
    account.missing += end - begin + 1;
    account.missingSince = account.missingSince ? account.missingSince : source.gapSince;
    if (account.missingFrames.size() < CameraAccount::mostRanges) {
      account.missingFrames.push_back({account.camera, source.start, begin, end});
    }
  }
  account.stored += source.received.size();
  account.dropped += known.size() - source.received.size();
  account.waiting += std::max(source.numbered, last) - last;
  account.late += source.late;
  account.repeated += source.repeated;
}

std::vector<CameraAccount> LiveAccounts::accounts() const {
  std::vector<CameraAccount> accounts;
  for (const auto& [key, starts] : cameras_) {
    CameraAccount account;
    std::tie(account.site, account.device, account.camera) = key;
    for (const Source& source : starts) {
      book(account, source, &source == &starts.front());
    }
    account.numbered = account.stored + account.dropped + account.waiting + account.missing;
    accounts.push_back(account);
  }
  return accounts;
}

}  // namespace tarn::command
