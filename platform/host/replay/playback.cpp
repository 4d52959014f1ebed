// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "replay/playback.h"

#include "diagnostics.h"

#include <tarnvod/video_object_detection.pb.h>

#include <algorithm>
#include <utility>

namespace vod::host {

using recording::Damage;
using recording::RecordedScene;
using recording::RecordingReader;

Playback::Playback(std::string folder, Replay replay)
    : folder_(std::move(folder)),
      replay_(replay),
      reader_(std::make_unique<RecordingReader>(folder_)),
      upcoming_(reader_->next()) {
  if (const auto* const damage = std::get_if<Damage>(&upcoming_)) {
    throw recording::RecordingError(toString(*damage));
  }
}

std::optional<Playback::Item> Playback::next() {
  auto scene = nextScene();
  if (!scene && replay_.loop && firstTimestamp_) {
    startAgain();
    scene = nextScene();
  }
  if (!scene) {
    return std::nullopt;
  }
  const auto due = dueTimeOf(*scene);
  return Item{*std::move(scene), replay_.pace ? std::optional(due) : std::nullopt};
}

std::optional<std::string> Playback::nextScene() {
  skipDamage();
  auto* const scene = std::get_if<RecordedScene>(&upcoming_);
  if (scene == nullptr) {
    return std::nullopt;
  }
  std::string bytes = std::move(scene->bytes);
  upcoming_ = reader_->next();
  return bytes;
}

void Playback::skipDamage() {
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

void Playback::startAgain() {
  firstTimestamp_.reset();
  passStart_ = lastDue_ + interval_;
  try {
    reader_ = std::make_unique<RecordingReader>(folder_);
    upcoming_ = reader_->next();
  } catch (const recording::RecordingError& error) {
    report(error.what());
    upcoming_ = recording::EndOfRecording();
  }
}

std::chrono::microseconds Playback::dueTimeOf(const std::string& scene) {
  // A scene that does not parse keeps the time stamp that was read before the error, or 0: it is due at once.
  VOD::Scene message;
  static_cast<void>(message.ParseFromString(scene));
  if (!firstTimestamp_) {
    firstTimestamp_ = message.timestamp();
  }
  const std::uint64_t elapsed = message.timestamp() - std::min(message.timestamp(), *firstTimestamp_);
  // About three years: the arithmetic of the clock would overflow with much longer times.
  constexpr double longest = 1e14;
  const double paced = std::min(static_cast<double>(elapsed) / replay_.pace.value_or(1.0), longest);
  const auto due = passStart_ + std::chrono::microseconds(static_cast<std::int64_t>(paced));
  if (due > lastDue_) {
    interval_ = due - lastDue_;
    lastDue_ = due;
  }
  return due;
}

}  // namespace vod::host
