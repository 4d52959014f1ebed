// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#ifndef TARNVOD_COMMAND_SCAN_PROGRESS_H
#define TARNVOD_COMMAND_SCAN_PROGRESS_H

#include "base/progress_bar.h"
#include "recordings/recording_scan.h"

#include <filesystem>
#include <string>

namespace tarn::command {

/** Shows on a terminal how far the reading of a recording is. */
class ScanProgress {
 public:
  explicit ScanProgress(const std::filesystem::path& folder);

  /** One more frame of this size has been read. */
  void show(std::size_t bytes);
  void hide() { bar_.hide(); }

 private:
  ProgressBar bar_;
  Progress progress_;
  const Clock::time_point start_ = Clock::now();
};

/** The number of frames that the indices of a recording list; 0 without an index. */
std::uint64_t indexedFrames(const std::filesystem::path& folder);

/** @throw Failure  when there is damage: names the first, and says what there is nevertheless */
void failOnDamage(const DamageList& damage, const std::string& nevertheless);

}  // namespace tarn::command

#endif
