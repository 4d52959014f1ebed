// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "schedule.h"

#include <algorithm>

namespace tarn::test {
namespace {

// A deviation's bits: the decision, and a choice, which is never 0.
constexpr unsigned deviationBits = 16;
constexpr unsigned choiceBits = 4;
constexpr std::uint64_t deviationMask = (1U << deviationBits) - 1;
constexpr std::uint64_t choiceMask = (1U << choiceBits) - 1;

constexpr std::uint64_t decisionsBetweenChanges = 8;

std::uint64_t deviation(std::size_t decision, std::size_t choice) {
  return decision << choiceBits | choice;
}

std::size_t countDeviations(std::uint64_t number) {
  std::size_t count = 0;
  for (; number != 0; number >>= deviationBits) {
    ++count;
  }
  return count;
}

}  // namespace

std::size_t DeviatingSchedule::choose(std::size_t decision, const std::vector<int>& enabled) {
  if (decision < options_.at.size()) {
    options_.at[decision] = static_cast<std::uint8_t>(std::min<std::size_t>(enabled.size(), choiceMask + 1));
    options_.count = decision + 1;
  }
  for (std::uint64_t rest = number_; rest != 0; rest >>= deviationBits) {
    const std::uint64_t bits = rest & deviationMask;
    if (bits >> choiceBits == decision) {
      return std::min<std::size_t>(bits & choiceMask, enabled.size() - 1);
    }
  }
  return 0;
}

std::optional<std::uint64_t> AllSchedules::next() {
  if (waiting_.empty()) {
    return std::nullopt;
  }
  const std::uint64_t number = waiting_.back();
  waiting_.pop_back();
  return number;
}

void AllSchedules::ran(std::uint64_t number, const Options& options) {
  const std::size_t deviations = countDeviations(number);
  if (deviations >= limit_) {
    return;
  }
  // The latest deviation has the lowest bits, so that each set of deviations has one number.
  const std::size_t first = number == 0 ? 0 : ((number & deviationMask) >> choiceBits) + 1;
  for (std::size_t decision = first; decision < options.count; ++decision) {
    for (std::size_t choice = 1; choice < options.at[decision]; ++choice) {
      waiting_.push_back(number << deviationBits | deviation(decision, choice));
    }
  }
}

std::size_t RandomSchedule::choose(std::size_t /*decision*/, const std::vector<int>& enabled) {
  if (random_() % decisionsBetweenChanges == 0) {
    priorities_[enabled.front()] = 0;
  }
  const auto highest = std::max_element(enabled.begin(), enabled.end(),
                                        [this](int left, int right) { return priorityOf(left) < priorityOf(right); });
  return static_cast<std::size_t>(highest - enabled.begin());
}

std::uint32_t RandomSchedule::priorityOf(int actor) {
  const auto known = priorities_.find(actor);
  return known != priorities_.end() ? known->second
                                    : priorities_.emplace(actor, static_cast<std::uint32_t>(random_())).first->second;
}

}  // namespace tarn::test
