// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#ifndef TARNVOD_VIDEO_RECORDER_SIGHTING_H
#define TARNVOD_VIDEO_RECORDER_SIGHTING_H

#include "video-recorder/box.h"

#include <cstdint>
#include <vector>

namespace recorder {

/** What looks like a person in one frame. */
struct Sighting {
  Box box;
  /** The distance from the detector's boundary between person and background: 0 on it, about 5 for a perfect person. */
  float margin = 0;
};

/** Leaves one sighting a person: the best of those that overlap, its box averaged with those that agree with it. */
std::vector<Sighting> withoutDuplicates(std::vector<Sighting> sightings);

/** How sure a sighting is, 0 to 100: a logistic curve of its margin with 50 at `evenMargin`. */
std::uint32_t scoreOf(float margin);

/** Where people and background were seen about equally often; chosen by eye. */
inline constexpr float evenMargin = 1.0F;
/** How steeply the score rises there; chosen by eye. */
inline constexpr float scoreSteepness = 2.0F;

}  // namespace recorder

#endif
