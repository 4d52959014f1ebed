// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#ifndef TARNVOD_VIDEO_RECORDER_BACKGROUND_H
#define TARNVOD_VIDEO_RECORDER_BACKGROUND_H

#include <opencv2/core.hpp>

#include <cstddef>
#include <filesystem>
#include <vector>

namespace recorder {

/**
 * What a video shows most of the time: the median of its pictures, without what passes through them. Keeps some of the
 * pictures, evenly spread over the video, however long it is.
 */
class Background {
 public:
  /** Takes note of the next picture, in blue, green and red; all have one size. */
  void add(const cv::Mat& picture);

  /** The median of the pictures so far; empty before the first. */
  cv::Mat median() const;

  /**
   * Writes the median as a JPEG file.
   *
   * @throw VideoError  when the file cannot be written
   */
  void write(const std::filesystem::path& file) const;

 private:
  void keepEverySecond();

  std::vector<cv::Mat> kept_;
  std::size_t distance_ = 1;  ///< of those that are kept, in pictures
  std::size_t added_ = 0;
};

}  // namespace recorder

#endif
