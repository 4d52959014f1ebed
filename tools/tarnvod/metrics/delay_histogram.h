// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#ifndef TARNVOD_COMMAND_DELAY_HISTOGRAM_H
#define TARNVOD_COMMAND_DELAY_HISTOGRAM_H

#include "metrics/metrics_text.h"

#include <array>
#include <cstdint>
#include <string_view>

namespace tarn::command {

/** How long things took. Not thread-safe. */
class DelayHistogram {
 public:
  void add(double seconds);
  void add(const DelayHistogram& other);

  /** Adds the samples of the histogram to a text. */
  void write(MetricsText& text, std::string_view name, std::string_view help) const;

 private:
  /** Upper bounds, in seconds. */
  static constexpr std::array<double, 12> bounds{0.025, 0.05, 0.1, 0.25, 0.5, 1, 2.5, 10, 30, 60, 600, 3600};

  std::array<std::uint64_t, bounds.size() + 1> counts_{};  ///< up to each bound, not those up to the one before
  double sum_ = 0;
};

}  // namespace tarn::command

#endif
