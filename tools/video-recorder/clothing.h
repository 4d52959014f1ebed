// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#ifndef TARNVOD_VIDEO_RECORDER_CLOTHING_H
#define TARNVOD_VIDEO_RECORDER_CLOTHING_H

#include "video-recorder/box.h"
#include "video-recorder/colours.h"

#include <opencv2/core.hpp>

namespace recorder {

/** Reads from a colour picture what the person in the box wears. */
Clothing clothingOf(const cv::Mat& picture, const Box& person);

}  // namespace recorder

#endif
