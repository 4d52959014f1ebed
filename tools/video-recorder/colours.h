// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#ifndef TARNVOD_VIDEO_RECORDER_COLOURS_H
#define TARNVOD_VIDEO_RECORDER_COLOURS_H

#include <array>
#include <cstddef>
#include <cstdint>

namespace recorder {

/** The colours that clothing is said to have. */
inline constexpr std::array<const char*, 10> colourNames = {"black",  "grey",  "white", "red",    "orange",
                                                            "yellow", "green", "blue",  "purple", "brown"};

/** An index into `colourNames`. */
using Colour = std::size_t;

struct Rgb {
  std::uint8_t red = 0;
  std::uint8_t green = 0;
  std::uint8_t blue = 0;
};

Colour nameColour(const Rgb& pixel);

/** How much of a garment has which colour: shares that add up to 1, or all 0 where nothing was seen yet. */
class ColourShares {
 public:
  /** Counts one pixel. */
  void add(const Rgb& pixel);

  /** Takes in what was seen of the same garment in a later frame; what was seen long ago fades. */
  void update(const ColourShares& later);

  bool isEmpty() const { return total() <= 0; }

  /** The most frequent colour. */
  Colour best() const;

  /** How much of the garment has the most frequent colour, 0 to 100. */
  std::uint32_t bestScore() const;

 private:
  float total() const;

  std::array<float, colourNames.size()> counts_{};
};

/** What a person wears. */
struct Clothing {
  ColourShares upper;
  ColourShares lower;
};

}  // namespace recorder

#endif
