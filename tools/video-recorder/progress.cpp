// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "video-recorder/progress.h"

#include <unistd.h>

#include <algorithm>
#include <iostream>
#include <string>

namespace recorder {
namespace {

constexpr int barWidth = 40;

std::string barOf(int done, int all) {
  const int filled = static_cast<int>(static_cast<long long>(barWidth) * std::min(done, all) / all);
  return "[" + std::string(static_cast<std::size_t>(filled), '#') +
         std::string(static_cast<std::size_t>(barWidth - filled), ' ') + "] ";
}

}  // namespace

Progress::Progress(int frames) : frames_(frames), isTerminal_(isatty(STDERR_FILENO) == 1) {}

Progress::~Progress() {
  if (isShown_) {
    std::cerr << std::endl;
  }
}

void Progress::show(int framesDone, std::size_t people) {
  if (!isTerminal_) {
    return;
  }
  isShown_ = true;
  const std::string bar = frames_ > 0 ? barOf(framesDone, frames_) : "";
  const std::string of = frames_ > 0 ? " of " + std::to_string(frames_) : "";
  std::cerr << "\r" << bar << framesDone << of << " frames, " << people << " people \033[K" << std::flush;
}

}  // namespace recorder
