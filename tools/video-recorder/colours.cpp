// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "video-recorder/colours.h"

#include <algorithm>
#include <cmath>
#include <numeric>

namespace recorder {
namespace {

enum : Colour { black, grey, white, red, orange, yellow, green, blue, purple, brown };

// Pixels darker than this show no hue that can be trusted; brighter ones without hue are white.
constexpr int darkest = 55;
constexpr int brightest = 190;
// Less colour than this, as a share of the brightest channel, is none. Dark pixels are noisier and need more.
constexpr float leastSaturation = 0.22F;
constexpr float leastSaturationInTheDark = 0.35F;
constexpr int dim = 90;
// A darker orange is called brown.
constexpr int brightestBrown = 150;
// How much one frame changes what is known of a garment: about ten frames settle it.
constexpr float frameWeight = 0.1F;

// In degrees: 0 is red, 120 green, 240 blue.
float hueOf(const Rgb& pixel, int value, int chroma) {
  const auto part = [chroma](int one, int other) {
    return 60 * static_cast<float>(one - other) / static_cast<float>(chroma);
  };
  if (value == pixel.red) {
    const float hue = part(pixel.green, pixel.blue);
    return hue < 0 ? hue + 360 : hue;
  }
  return value == pixel.green ? 120 + part(pixel.blue, pixel.red) : 240 + part(pixel.red, pixel.green);
}

Colour nameHue(float hue, int value) {
  if (hue < 14 || hue >= 335) {
    return red;
  }
  if (hue < 45) {
    return value <= brightestBrown ? brown : orange;
  }
  if (hue < 70) {
    return yellow;
  }
  if (hue < 170) {
    return green;
  }
  return hue < 265 ? blue : purple;
}

}  // namespace

Colour nameColour(const Rgb& pixel) {
  const int value = std::max({pixel.red, pixel.green, pixel.blue});
  const int chroma = value - std::min({pixel.red, pixel.green, pixel.blue});
  if (value < darkest) {
    return black;
  }
  const float saturation = static_cast<float>(chroma) / static_cast<float>(value);
  if (saturation < (value < dim ? leastSaturationInTheDark : leastSaturation)) {
    return value > brightest ? white : grey;
  }
  return nameHue(hueOf(pixel, value, chroma), value);
}

void ColourShares::add(const Rgb& pixel) {
  counts_[nameColour(pixel)] += 1;
}

void ColourShares::update(const ColourShares& later) {
  if (later.isEmpty()) {
    return;
  }
  const float before = total();
  const float newShare = before <= 0 ? 1 : frameWeight;
  const float oldShare = 1 - newShare;
  for (std::size_t i = 0; i < counts_.size(); ++i) {
    counts_[i] = (before <= 0 ? 0 : oldShare * counts_[i] / before) + newShare * later.counts_[i] / later.total();
  }
}

Colour ColourShares::best() const {
  return static_cast<Colour>(std::max_element(counts_.begin(), counts_.end()) - counts_.begin());
}

std::uint32_t ColourShares::bestScore() const {
  return isEmpty() ? 0 : static_cast<std::uint32_t>(std::lround(100 * counts_[best()] / total()));
}

float ColourShares::total() const {
  return std::accumulate(counts_.begin(), counts_.end(), 0.0F);
}

}  // namespace recorder
