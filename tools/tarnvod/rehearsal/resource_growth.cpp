// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "rehearsal/resource_growth.h"

#include <algorithm>
#include <vector>

namespace tarn::command {

std::optional<std::uint64_t> growthOf(const ApplicationRun& run, const std::string& resource, std::int64_t least) {
  constexpr std::size_t fewestRounds = 10;
  constexpr std::size_t group = 3;
  std::vector<std::int64_t> values;
  for (const auto& observation : run.observations) {
    if (observation.event == "mark") {
      values.push_back(observation.number(resource));
    }
  }
  if (values.size() < fewestRounds) {
    return std::nullopt;
  }
  const std::size_t roundsBetween = values.size() / 2;
  const auto last = values.end() - group;
  const auto middle = last - static_cast<std::ptrdiff_t>(roundsBetween);
  const std::int64_t before = *std::max_element(middle, middle + group);
  const std::int64_t after = *std::min_element(last, values.end());
  // The extremes of both groups are up to two groups less one apart: nearer than the rounds between them.
  const std::int64_t perRound = (after - before) / static_cast<std::int64_t>(roundsBetween - group + 1);
  return perRound >= least ? std::optional(static_cast<std::uint64_t>(perRound)) : std::nullopt;
}

}  // namespace tarn::command
