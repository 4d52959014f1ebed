// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#ifndef TARNVOD_COMMAND_PROGRESS_BAR_H
#define TARNVOD_COMMAND_PROGRESS_BAR_H

#include "base/clock.h"
#include "base/options.h"

#include <cstdint>
#include <string>

namespace tarn::command {

/** How far a recording has come. */
struct Progress {
  std::uint64_t frames = 0;
  std::uint64_t bytes = 0;
  Clock::duration elapsed{0};
};

/** The part that is done, from 0 to 1; negative when there is no limit. */
double fractionDone(const Progress& progress, const Limits& limits);

/** A bar, if the end is known, and the numbers, in at most `columns`. */
std::string progressLine(const Progress& progress, const Limits& limits, std::size_t columns);

/** Shows progress on standard error, in place, and only if that is a terminal. */
class ProgressBar {
 public:
  explicit ProgressBar(const Limits& limits);
  ~ProgressBar();
  ProgressBar(const ProgressBar&) = delete;
  ProgressBar& operator=(const ProgressBar&) = delete;

  void show(const Progress& progress, Clock::time_point now);
  /** Removes the bar, to make room for another line. */
  void hide();

 private:
  const Limits limits_;
  const bool isTerminal_;
  bool isShown_ = false;
  Clock::time_point shownAt_;
};

}  // namespace tarn::command

#endif
