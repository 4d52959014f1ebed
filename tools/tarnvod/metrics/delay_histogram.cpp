// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "metrics/delay_histogram.h"

#include <algorithm>
#include <cstddef>

namespace tarn::command {

void DelayHistogram::add(double seconds) {
  const auto* const bound = std::lower_bound(bounds.begin(), bounds.end(), seconds);
  ++counts_.at(static_cast<std::size_t>(bound - bounds.begin()));
  sum_ += seconds;
}

void DelayHistogram::add(const DelayHistogram& other) {
  std::transform(counts_.begin(), counts_.end(), other.counts_.begin(), counts_.begin(),
                 [](std::uint64_t left, std::uint64_t right) { return left + right; });
  sum_ += other.sum_;
}

void DelayHistogram::write(MetricsText& text, std::string_view name, std::string_view help) const {
  text.beginHistogram(name, help);
  std::uint64_t count = 0;
  for (std::size_t index = 0; index < counts_.size(); ++index) {
    count += counts_.at(index);
    text.add(count, {{"le", index < bounds.size() ? decimalText(bounds.at(index)) : "+Inf"}}, "_bucket");
  }
  text.add(sum_, {}, "_sum");
  text.add(count, {}, "_count");
}

}  // namespace tarn::command
