// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "replay/recording_source.h"

#include "diagnostics.h"

#include <algorithm>
#include <utility>

namespace vod::host {

using recording::Damage;
using recording::RecordedScene;
using recording::RecordingReader;

RecordingSource::RecordingSource(std::string folder)
    : folder_(std::move(folder)), reader_(std::make_unique<RecordingReader>(folder_)), upcoming_(reader_->next()) {
  if (const auto* const damage = std::get_if<Damage>(&upcoming_)) {
    throw recording::RecordingError(toString(*damage));
  }
}

std::optional<TimedScene> RecordingSource::next() {
  skipDamage();
  auto* const scene = std::get_if<RecordedScene>(&upcoming_);
  if (scene == nullptr) {
    return std::nullopt;
  }
  std::string bytes = std::move(scene->bytes);
  upcoming_ = reader_->next();
  const std::uint64_t time = timeOf(bytes);
  return TimedScene{std::move(bytes), time, 0};
}

void RecordingSource::skipDamage() {
  while (const auto* const damage = std::get_if<Damage>(&upcoming_)) {
    if (!damageReported_) {
      report(toString(*damage));
      damageReported_ = true;
    }
    if (reader_->atEnd()) {
      return;
    }
    upcoming_ = reader_->next();
  }
}

void RecordingSource::startAgain() {
  firstTimestamp_.reset();
  try {
    reader_ = std::make_unique<RecordingReader>(folder_);
    upcoming_ = reader_->next();
  } catch (const recording::RecordingError& error) {
    report(error.what());
    upcoming_ = recording::EndOfRecording();
  }
}

std::uint64_t RecordingSource::timeOf(const std::string& scene) {
  const std::uint64_t timestamp = timestampOf(scene);
  if (!firstTimestamp_) {
    firstTimestamp_ = timestamp;
  }
  return timestamp - std::min(timestamp, *firstTimestamp_);
}

}  // namespace vod::host
