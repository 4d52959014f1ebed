// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "recordings/scan_progress.h"

#include "base/errors.h"

#include <recording/scene_index.h>
#include <recording/segments.h>

namespace tarn::command {
namespace {

Limits limitsFor(const std::filesystem::path& folder) {
  Limits limits;
  if (const std::uint64_t frames = indexedFrames(folder)) {
    limits.frames = frames;
  }
  return limits;
}

}  // namespace

ScanProgress::ScanProgress(const std::filesystem::path& folder) : bar_(limitsFor(folder)) {}

void ScanProgress::show(std::size_t bytes) {
  // Asking for the time costs more than a frame does.
  constexpr std::uint64_t period = 64;
  progress_.bytes += bytes;
  if (++progress_.frames % period == 0) {
    const Clock::time_point now = Clock::now();
    progress_.elapsed = now - start_;
    bar_.show(progress_, now);
  }
}

std::uint64_t indexedFrames(const std::filesystem::path& folder) {
  std::uint64_t frames = 0;
  for (const auto& part : vod::recording::partsOf(folder)) {
    frames += vod::recording::SceneIndex(part).size();
  }
  return frames;
}

void failOnDamage(const DamageList& damage, const std::string& nevertheless) {
  if (damage.count() > 0) {
    const std::uint64_t others = damage.count() - 1;
    throw Failure(vod::recording::toString(damage.first().front()) +
                  (others > 0 ? " (and " + std::to_string(others) + " more)" : "") + "; " + nevertheless);
  }
}

}  // namespace tarn::command
