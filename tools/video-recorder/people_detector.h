// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#ifndef TARNVOD_VIDEO_RECORDER_PEOPLE_DETECTOR_H
#define TARNVOD_VIDEO_RECORDER_PEOPLE_DETECTOR_H

#include "video-recorder/sighting.h"

#include <opencv2/objdetect.hpp>

#include <vector>

namespace recorder {

/** Finds upright people in a picture with OpenCV's built-in model of histograms of oriented gradients. */
class PeopleDetector {
 public:
  /** @param smallestPerson  height in pixels of the smallest person to find; the smaller, the slower */
  explicit PeopleDetector(int smallestPerson);

  /** The people in a colour picture, each once; the same picture gives the same people. */
  std::vector<Sighting> detect(const cv::Mat& picture) const;

 private:
  cv::HOGDescriptor model_;
  double enlargement_;
};

}  // namespace recorder

#endif
