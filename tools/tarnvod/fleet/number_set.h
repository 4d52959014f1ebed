// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#ifndef TARNVOD_COMMAND_NUMBER_SET_H
#define TARNVOD_COMMAND_NUMBER_SET_H

#include <cstddef>
#include <cstdint>
#include <map>
#include <utility>
#include <vector>

namespace tarn::command {

/** Numbers from 1 on, in memory that grows with their gaps. Not thread-safe. */
class NumberSet {
 public:
  /** First and last of numbers without a gap. */
  using Range = std::pair<std::uint64_t, std::uint64_t>;

  /** Adds these numbers, both ends included; returns how many of them are new. */
  std::uint64_t add(std::uint64_t first, std::uint64_t last);

  bool isEmpty() const { return ranges_.empty(); }
  std::uint64_t size() const { return size_; }
  std::size_t ranges() const { return ranges_.size(); }
  /** Of a set that is not empty. */
  std::uint64_t lowest() const { return ranges_.begin()->first; }
  /** 0 for an empty set. */
  std::uint64_t highest() const { return ranges_.empty() ? 0 : ranges_.rbegin()->second; }

  /** All numbers of the set, in ascending order. */
  const std::map<std::uint64_t, std::uint64_t>& all() const { return ranges_; }

  /** Removes and returns the lowest range of a set that is not empty. */
  Range takeLowestRange();

  /** What is not in the set of the numbers from the first to the last one. */
  std::vector<Range> gaps(std::uint64_t first, std::uint64_t last) const;

 private:
  std::map<std::uint64_t, std::uint64_t> ranges_;  ///< first and last; neither overlapping nor adjacent
  std::uint64_t size_ = 0;
};

}  // namespace tarn::command

#endif
