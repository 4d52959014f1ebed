// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "video-recorder/colours.h"

#include <gtest/gtest.h>

#include <string>

using recorder::ColourShares;
using recorder::Rgb;

namespace {

struct NamedPixel {
  Rgb pixel;
  std::string name;
};

class APixel : public testing::TestWithParam<NamedPixel> {};

ColourShares garment(const Rgb& one, int countOfOne, const Rgb& other, int countOfOther) {
  ColourShares shares;
  for (int i = 0; i < countOfOne; ++i) {
    shares.add(one);
  }
  for (int i = 0; i < countOfOther; ++i) {
    shares.add(other);
  }
  return shares;
}

constexpr Rgb redPixel = {200, 20, 30};
constexpr Rgb bluePixel = {60, 90, 160};

}  // namespace

TEST_P(APixel, HasTheNameThatAPersonWouldGiveIt) {
  EXPECT_EQ(recorder::colourNames[recorder::nameColour(GetParam().pixel)], GetParam().name);
}

INSTANTIATE_TEST_SUITE_P(OfEachColour, APixel,
                         testing::Values(NamedPixel{{20, 20, 24}, "black"}, NamedPixel{{130, 128, 132}, "grey"},
                                         NamedPixel{{240, 238, 241}, "white"}, NamedPixel{redPixel, "red"},
                                         NamedPixel{{250, 140, 20}, "orange"}, NamedPixel{{230, 220, 40}, "yellow"},
                                         NamedPixel{{40, 150, 50}, "green"}, NamedPixel{bluePixel, "blue"},
                                         NamedPixel{{140, 40, 170}, "purple"}, NamedPixel{{110, 70, 30}, "brown"},
                                         // Just past red on the other side of the colour circle.
                                         NamedPixel{{200, 20, 60}, "red"},
                                         // Dark and nearly without colour: no hue that could be trusted.
                                         NamedPixel{{62, 62, 76}, "grey"}),
                         [](const auto& tested) { return tested.param.name + std::to_string(tested.index); });

TEST(AGarment, ThatWasNotSeenIsEmpty) {
  EXPECT_TRUE(ColourShares().isEmpty());
  EXPECT_EQ(ColourShares().bestScore(), 0U);
}

TEST(AGarment, HasItsMostFrequentColourWithItsShareAsScore) {
  const ColourShares shares = garment(bluePixel, 3, redPixel, 1);
  EXPECT_EQ(shares.best(), recorder::nameColour(bluePixel));
  EXPECT_EQ(shares.bestScore(), 75U);
}

TEST(AGarmentSeenForTheFirstTime, IsTakenOverWhole) {
  ColourShares known;
  known.update(garment(bluePixel, 3, redPixel, 1));
  EXPECT_EQ(known.bestScore(), 75U);
}

TEST(AGarmentSeenBefore, KeepsItsColourThroughOneOddFrame) {
  ColourShares known = garment(bluePixel, 10, redPixel, 0);
  known.update(garment(bluePixel, 0, redPixel, 500));
  EXPECT_EQ(known.best(), recorder::nameColour(bluePixel));
  EXPECT_EQ(known.bestScore(), 90U);
}

TEST(AGarmentSeenBefore, TakesANewColourThatStays) {
  ColourShares known = garment(bluePixel, 10, redPixel, 0);
  for (int frame = 0; frame < 10; ++frame) {
    known.update(garment(bluePixel, 0, redPixel, 5));
  }
  EXPECT_EQ(known.best(), recorder::nameColour(redPixel));
}

TEST(AGarmentSeenBefore, IsUnchangedByAFrameThatShowsNothingOfIt) {
  ColourShares known = garment(bluePixel, 3, redPixel, 1);
  known.update(ColourShares());
  EXPECT_EQ(known.bestScore(), 75U);
}
