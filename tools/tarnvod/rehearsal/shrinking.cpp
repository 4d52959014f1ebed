// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "rehearsal/shrinking.h"

#include <algorithm>
#include <optional>

namespace tarn::command {
namespace {

using Faults = std::vector<vod::schedule::Fault>;

/** All faults but those of one part, of `parts` of about the same size. */
Faults without(const Faults& faults, std::size_t part, std::size_t parts) {
  Faults rest;
  for (std::size_t i = 0; i < faults.size(); ++i) {
    if (i * parts / faults.size() != part) {
      rest.push_back(faults[i]);
    }
  }
  return rest;
}

}  // namespace

Faults shrink(Faults faults, const std::function<bool(const Faults&)>& fails, int most) {
  const auto firstThatFails = [&](std::size_t parts) -> std::optional<Faults> {
    for (std::size_t part = 0; part < parts && most > 0; ++part) {
      Faults rest = without(faults, part, parts);
      --most;
      if (fails(rest)) {
        return rest;
      }
    }
    return std::nullopt;
  };
  // First all at once: it may fail without any fault.
  for (std::size_t parts = 1; !faults.empty() && most > 0;) {
    if (auto fewer = firstThatFails(parts)) {
      faults = std::move(*fewer);
      parts = std::min(std::max<std::size_t>(parts - 1, 2), std::max<std::size_t>(faults.size(), 1));
    } else if (parts >= faults.size()) {
      break;
    } else {
      parts = std::min(parts * 2, faults.size());
    }
  }
  return faults;
}

}  // namespace tarn::command
