// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "video-recorder/clothing.h"

namespace recorder {
namespace {

// Where in a person's box the chest and the legs are: narrow, so that little background is counted.
constexpr Box chest = {0.30F, 0.20F, 0.70F, 0.45F};
constexpr Box legs = {0.32F, 0.55F, 0.68F, 0.85F};

cv::Rect pixelsOf(const Box& part, const Box& person, const cv::Size& picture) {
  const auto x = [&](float share) {
    return cvRound((person.left + share * person.width()) * static_cast<float>(picture.width));
  };
  const auto y = [&](float share) {
    return cvRound((person.top + share * person.height()) * static_cast<float>(picture.height));
  };
  return cv::Rect({x(part.left), y(part.top)}, cv::Point{x(part.right), y(part.bottom)}) & cv::Rect({0, 0}, picture);
}

ColourShares coloursIn(const cv::Mat& pixels) {
  ColourShares shares;
  for (int row = 0; row < pixels.rows; ++row) {
    for (int column = 0; column < pixels.cols; ++column) {
      const auto& bgr = pixels.at<cv::Vec3b>(row, column);
      shares.add({bgr[2], bgr[1], bgr[0]});
    }
  }
  return shares;
}

}  // namespace

Clothing clothingOf(const cv::Mat& picture, const Box& person) {
  return {coloursIn(picture(pixelsOf(chest, person, picture.size()))),
          coloursIn(picture(pixelsOf(legs, person, picture.size())))};
}

}  // namespace recorder
