// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "base/progress_bar.h"

#include "base/output.h"
#include "base/terminal.h"
#include "base/text.h"

#include <unistd.h>

#include <algorithm>

namespace tarn::command {
namespace {

constexpr std::size_t barColumns = 30;
constexpr std::chrono::milliseconds redrawPeriod{100};

std::string bar(double fraction) {
  const auto full = static_cast<std::size_t>(fraction * static_cast<double>(barColumns));
  return '[' + std::string(full, '#') + std::string(barColumns - full, '.') + "] " +
         fittedRight(fixed(100 * fraction, 0), 3) + " %  ";
}

void writeToTerminal(const std::string& text) {
  // The recording goes on when the terminal has been closed.
  [[maybe_unused]] const ssize_t written = ::write(STDERR_FILENO, text.data(), text.size());
}

}  // namespace

double fractionDone(const Progress& progress, const Limits& limits) {
  const double seconds = std::chrono::duration<double>(progress.elapsed).count();
  const double byFrames =
      limits.frames ? static_cast<double>(progress.frames) / static_cast<double>(*limits.frames) : -1;
  const double bySeconds = limits.seconds ? seconds / *limits.seconds : -1;
  return std::min(1.0, std::max(byFrames, bySeconds));
}

std::string progressLine(const Progress& progress, const Limits& limits, std::size_t columns) {
  const double fraction = fractionDone(progress, limits);
  const double seconds = std::chrono::duration<double>(progress.elapsed).count();
  return cut((fraction < 0 ? "" : bar(fraction)) + counted(progress.frames, "frame") + "  " + fixed(seconds, 1) +
                 " s  " + byteSize(progress.bytes),
             columns);
}

ProgressBar::ProgressBar(const Limits& limits) : limits_(limits), isTerminal_(canRedraw(Output(STDERR_FILENO))) {}

ProgressBar::~ProgressBar() {
  hide();
}

void ProgressBar::show(const Progress& progress, Clock::time_point now) {
  if (!isTerminal_ || now - shownAt_ < redrawPeriod) {
    return;
  }
  const std::size_t columns = terminalSize(STDERR_FILENO).columns - 1;
  writeToTerminal("\r\x1b[K" + progressLine(progress, limits_, columns));
  isShown_ = true;
  shownAt_ = now;
}

void ProgressBar::hide() {
  if (isShown_) {
    writeToTerminal("\r\x1b[K");
    isShown_ = false;
  }
}

}  // namespace tarn::command
