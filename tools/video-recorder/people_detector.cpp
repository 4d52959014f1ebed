// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "video-recorder/people_detector.h"

#include <opencv2/imgproc.hpp>

namespace recorder {
namespace {

// A person in the model's 64x128 window is about 96 pixels tall.
constexpr double personInWindow = 96;
// The share of the window that lies around the person on each side, measured on pictures.
constexpr float marginX = 0.22F;
constexpr float marginTop = 0.105F;
constexpr float marginBottom = 0.115F;
// The step from one size of people to the next.
constexpr double sizeStep = 1.1;

Box personIn(const cv::Rect& window, const cv::Size& picture) {
  const auto x = static_cast<float>(window.x), y = static_cast<float>(window.y);
  const auto width = static_cast<float>(window.width), height = static_cast<float>(window.height);
  const auto pictureWidth = static_cast<float>(picture.width), pictureHeight = static_cast<float>(picture.height);
  return clipped({(x + marginX * width) / pictureWidth, (y + marginTop * height) / pictureHeight,
                  (x + (1 - marginX) * width) / pictureWidth, (y + (1 - marginBottom) * height) / pictureHeight});
}

}  // namespace

PeopleDetector::PeopleDetector(int smallestPerson) : enlargement_(personInWindow / smallestPerson) {
  model_.setSVMDetector(cv::HOGDescriptor::getDefaultPeopleDetector());
}

std::vector<Sighting> PeopleDetector::detect(const cv::Mat& picture) const {
  cv::Mat enlarged;
  cv::resize(picture, enlarged, {}, enlargement_, enlargement_, cv::INTER_LINEAR);

  if (enlarged.cols < model_.winSize.width || enlarged.rows < model_.winSize.height) {
    return {};  // nobody of the smallest size fits into the picture
  }

  std::vector<cv::Rect> windows;
  std::vector<double> margins;
  model_.detectMultiScale(enlarged, windows, margins, /*hitThreshold=*/0, /*winStride=*/{8, 8}, /*padding=*/{8, 8},
                          sizeStep, /*groupThreshold=*/0);

  std::vector<Sighting> sightings;
  sightings.reserve(windows.size());
  for (std::size_t i = 0; i < windows.size(); ++i) {
    sightings.push_back({personIn(windows[i], enlarged.size()), static_cast<float>(margins[i])});
  }
  return withoutDuplicates(std::move(sightings));
}

}  // namespace recorder
