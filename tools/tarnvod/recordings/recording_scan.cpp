// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "recordings/recording_scan.h"

#include "base/errors.h"
#include "base/stop_signal.h"
#include "recordings/scan_progress.h"

#include <recording/checked_reader.h>
#include <recording/segments.h>

#include <string>
#include <utility>
#include <variant>

namespace tarn::command {

using vod::recording::CheckedReader;
using vod::recording::CheckedScene;
using vod::recording::Damage;

void RecordingClock::advanceTo(std::uint64_t timestamp) {
  const std::uint64_t latest = latest_.value_or(timestamp);
  restarts_ += timestamp < latest ? 1U : 0U;
  elapsed_ += timestamp < latest ? 0 : timestamp - latest;
  latest_ = timestamp;
}

void DamageList::add(Damage damage) {
  constexpr std::size_t kept = 20;
  ++count_;
  if (first_.size() < kept) {
    first_.push_back(std::move(damage));
  }
}

void failOnDamage(const DamageList& damage, const std::string& nevertheless) {
  if (damage.count() > 0) {
    const std::uint64_t others = damage.count() - 1;
    throw Failure(vod::recording::toString(damage.first().front()) +
                  (others > 0 ? " (and " + std::to_string(others) + " more)" : "") + "; " + nevertheless);
  }
}

void scanBytes(const std::filesystem::path& folder, const std::function<bool(const CheckedScene&)>& visit,
               DamageList& damage) {
  CheckedReader reader(folder);
  ScanProgress progress({folder});
  bool goesOn = true;
  while (goesOn) {
    throwIfStopRequested();
    auto next = reader.next();
    if (auto* const found = std::get_if<Damage>(&next)) {
      damage.add(std::move(*found));
    } else if (const auto* const scene = std::get_if<CheckedScene>(&next)) {
      progress.show(scene->bytes.size());
      goesOn = visit(*scene);
    } else {
      goesOn = false;
    }
  }
}

void scanRecording(const std::filesystem::path& folder, const std::function<bool(const ScannedScene&)>& visit,
                   DamageList& damage) {
  const std::vector<std::filesystem::path> parts = vod::recording::partsOf(folder);
  ScannedScene scanned;
  const auto parse = [&](const CheckedScene& recorded) {
    ++scanned.number;
    scanned.part = recorded.part;
    scanned.offset = recorded.offset;
    scanned.bytes = recorded.bytes;
    scanned.arrival = recorded.arrival;
    if (scanned.scene.ParseFromString(recorded.bytes)) {
      return visit(scanned);
    }
    damage.add({(parts.at(recorded.part) / vod::recording::scenesFileName).string(), recorded.offset,
                "frame " + std::to_string(scanned.number) + " is not a serialized VOD.Scene"});
    return true;
  };
  scanBytes(folder, parse, damage);
}

}  // namespace tarn::command
