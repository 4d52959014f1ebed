// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "fleet/number_set.h"

#include <algorithm>
#include <iterator>

namespace tarn::command {

std::uint64_t NumberSet::add(std::uint64_t first, std::uint64_t last) {
  const std::uint64_t before = size_;
  auto next = ranges_.upper_bound(first);
  if (next != ranges_.begin() && std::prev(next)->second + 1 >= first) {
    --next;  // it overlaps, or is adjacent
  }
  while (next != ranges_.end() && next->first <= last + 1) {
    first = std::min(first, next->first);
    last = std::max(last, next->second);
    size_ -= next->second - next->first + 1;
    next = ranges_.erase(next);
  }
  ranges_.emplace_hint(next, first, last);
  size_ += last - first + 1;
  return size_ - before;
}

NumberSet::Range NumberSet::takeLowestRange() {
  const Range lowest = *ranges_.begin();
  ranges_.erase(ranges_.begin());
  size_ -= lowest.second - lowest.first + 1;
  return lowest;
}

std::vector<NumberSet::Range> NumberSet::gaps(std::uint64_t first, std::uint64_t last) const {
  std::vector<Range> found;
  for (const auto& [begin, end] : ranges_) {
    if (begin > first && first <= last) {
      found.emplace_back(first, std::min(begin - 1, last));
    }
    first = std::max(first, end + 1);
  }
  if (first <= last) {
    found.emplace_back(first, last);
  }
  return found;
}

}  // namespace tarn::command
