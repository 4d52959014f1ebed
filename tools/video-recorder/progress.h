// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#ifndef TARNVOD_VIDEO_RECORDER_PROGRESS_H
#define TARNVOD_VIDEO_RECORDER_PROGRESS_H

#include <cstddef>

namespace recorder {

/** A line on standard error that says how far the recording is; silent where that is no terminal. */
class Progress {
 public:
  /** @param frames  how many there will be; 0 when that is not known */
  explicit Progress(int frames);
  /** Leaves the line as it stands. */
  ~Progress();
  Progress(const Progress&) = delete;
  Progress& operator=(const Progress&) = delete;

  void show(int framesDone, std::size_t people);

 private:
  int frames_;
  bool isTerminal_;
  bool isShown_ = false;
};

}  // namespace recorder

#endif
