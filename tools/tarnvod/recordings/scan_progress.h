// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#ifndef TARNVOD_COMMAND_SCAN_PROGRESS_H
#define TARNVOD_COMMAND_SCAN_PROGRESS_H

#include "base/progress_bar.h"

#include <cstddef>
#include <filesystem>
#include <vector>

namespace tarn::command {

/** Shows on a terminal how far the reading of recordings is, and removes that when it is destroyed. */
class ScanProgress {
 public:
  explicit ScanProgress(const std::vector<std::filesystem::path>& recordings);

  /** One more frame of this size has been read. */
  void show(std::size_t bytes);
  /** Makes room for another line; the next frames show the progress again. */
  void hide() { bar_.hide(); }

 private:
  ProgressBar bar_;
  Progress progress_;
  const Clock::time_point start_ = Clock::now();
};

}  // namespace tarn::command

#endif
