// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "video-recorder/sighting.h"

#include <algorithm>
#include <cmath>
#include <tuple>

namespace recorder {
namespace {

// Two people side by side overlap less than this, the windows around one person more.
constexpr float samePersonOverlap = 0.35F;
// A small window within a large one is a part of the same person even where their areas differ much.
constexpr float samePersonShare = 0.7F;
// Only windows that nearly agree refine the box; the rest would pull it off the person.
constexpr float agreeingOverlap = 0.55F;

bool isSamePerson(const Box& one, const Box& other) {
  const float smaller = std::min(one.area(), other.area());
  return overlap(one, other) > samePersonOverlap || intersection(one, other) > samePersonShare * smaller;
}

// The whole order is fixed, so that equal margins give the same result on every run.
bool isBetter(const Sighting& one, const Sighting& other) {
  const auto key = [](const Sighting& sighting) {
    return std::tuple(-sighting.margin, sighting.box.left, sighting.box.top, sighting.box.right);
  };
  return key(one) < key(other);
}

Box averagedWithAgreeing(const Sighting& best, const std::vector<Sighting>& all) {
  Box average = best.box;
  float weight = 0;
  for (const Sighting& sighting : all) {
    if (sighting.margin <= 0 || overlap(sighting.box, best.box) < agreeingOverlap) {
      continue;
    }
    weight += sighting.margin;
    average = mixed(sighting.box, average, sighting.margin / weight);
  }
  return average;
}

}  // namespace

std::vector<Sighting> withoutDuplicates(std::vector<Sighting> sightings) {
  std::sort(sightings.begin(), sightings.end(), isBetter);
  std::vector<Sighting> best;
  for (const Sighting& sighting : sightings) {
    const bool isKnown = std::any_of(best.begin(), best.end(), [&sighting](const Sighting& better) {
      return isSamePerson(sighting.box, better.box);
    });
    if (!isKnown) {
      best.push_back(sighting);
    }
  }
  for (Sighting& sighting : best) {
    sighting.box = averagedWithAgreeing(sighting, sightings);
  }
  return best;
}

std::uint32_t scoreOf(float margin) {
  const float share = 1 / (1 + std::exp(-scoreSteepness * (margin - evenMargin)));
  return static_cast<std::uint32_t>(std::lround(100 * share));
}

}  // namespace recorder
