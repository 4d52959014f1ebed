// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "recordings/recording_scan.h"

#include "base/stop_signal.h"

#include <recording/recording_reader.h>

#include <string>
#include <utility>
#include <variant>

namespace tarn::command {

using vod::recording::Damage;
using vod::recording::EndOfRecording;
using vod::recording::RecordedScene;

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

void scanRecording(const std::filesystem::path& folder, const std::function<bool(const ScannedScene&)>& visit,
                   DamageList& damage) {
  vod::recording::RecordingReader reader(folder);
  const std::string file = (folder / vod::recording::scenesFileName).string();
  ScannedScene scanned;
  while (true) {
    throwIfStopRequested();
    auto next = reader.next();
    if (std::holds_alternative<EndOfRecording>(next)) {
      return;
    }
    if (const auto* found = std::get_if<Damage>(&next)) {
      damage.add(*found);
      return;
    }
    const auto& recorded = std::get<RecordedScene>(next);
    ++scanned.number;
    scanned.offset = recorded.offset;
    scanned.size = recorded.bytes.size();
    if (!scanned.scene.ParseFromString(recorded.bytes)) {
      damage.add({file, recorded.offset, "frame " + std::to_string(scanned.number) + " is not a serialized VOD.Scene"});
    } else if (!visit(scanned)) {
      return;
    }
  }
}

}  // namespace tarn::command
