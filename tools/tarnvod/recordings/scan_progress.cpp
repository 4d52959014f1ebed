// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "recordings/scan_progress.h"

#include <recording/scene_index.h>
#include <recording/segments.h>

namespace tarn::command {
namespace {

std::uint64_t indexedFrames(const std::filesystem::path& recording) {
  std::uint64_t frames = 0;
  for (const auto& part : vod::recording::partsOf(recording)) {
    frames += vod::recording::SceneIndex(part).size();
  }
  return frames;
}

/** The frames of all recordings; unknown when one of them has no index. */
Limits limitsFor(const std::vector<std::filesystem::path>& recordings) {
  std::uint64_t sum = 0;
  for (const auto& recording : recordings) {
    const std::uint64_t frames = indexedFrames(recording);
    if (frames == 0) {
      return {};
    }
    sum += frames;
  }
  Limits limits;
  limits.frames = sum;
  return limits;
}

}  // namespace

ScanProgress::ScanProgress(const std::vector<std::filesystem::path>& recordings) : bar_(limitsFor(recordings)) {}

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

}  // namespace tarn::command
