// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "replay/playback.h"

#include <algorithm>
#include <cstdint>
#include <utility>

namespace vod::host {

Playback::Playback(std::unique_ptr<SceneSource> source, Replay replay) : source_(std::move(source)), replay_(replay) {}

std::optional<Playback::Item> Playback::next() {
  auto scene = source_->next();
  if (!scene && replay_.loop && passHasScenes_) {
    passHasScenes_ = false;
    passStart_ = lastDue_ + interval_;
    source_->startAgain();
    scene = source_->next();
  }
  if (!scene) {
    return std::nullopt;
  }
  passHasScenes_ = true;
  const auto due = dueTimeOf(*scene);
  return Item{std::move(scene->bytes), scene->recording, replay_.pace ? std::optional(due) : std::nullopt};
}

std::chrono::microseconds Playback::dueTimeOf(const TimedScene& scene) {
  // About three years: the arithmetic of the clock would overflow with much longer times.
  constexpr double longest = 1e14;
  const double paced = std::min(static_cast<double>(scene.time) / replay_.pace.value_or(1.0), longest);
  const auto due = passStart_ + std::chrono::microseconds(static_cast<std::int64_t>(paced));
  lastDueOf_.resize(std::max(lastDueOf_.size(), scene.recording + 1));
  auto& before = lastDueOf_[scene.recording];
  if (due > before.value_or(due)) {
    interval_ = due - *before;
  }
  before = std::max(due, before.value_or(due));
  lastDue_ = std::max(lastDue_, due);
  return due;
}

}  // namespace vod::host
