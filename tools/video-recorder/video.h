// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#ifndef TARNVOD_VIDEO_RECORDER_VIDEO_H
#define TARNVOD_VIDEO_RECORDER_VIDEO_H

#include <opencv2/videoio.hpp>

#include <chrono>
#include <cstdint>
#include <optional>
#include <stdexcept>
#include <string>

namespace recorder {

/** A video that cannot be used; `what()` is one line that names it. */
class VideoError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/** The pictures of a video file or of a camera of this computer. */
class Video {
 public:
  struct Frame {
    cv::Mat picture;
    /** Microseconds from the first frame: by the frame rate of a file, by the clock for a camera. */
    std::uint64_t timestamp = 0;
  };

  /**
   * @param input        a file, or the number of a camera
   * @param firstFrame   how many frames of a file to pass over
   * @throw VideoError   when it cannot be opened or does not say its frame rate
   */
  Video(const std::string& input, int firstFrame);

  /** The next frame; none at the end. */
  std::optional<Frame> next();

  /** How many frames there are from the first one on; 0 when that is not known. */
  int length() const;

 private:
  bool isCamera() const { return framesPerSecond_ <= 0; }
  std::uint64_t timestampOfNext();

  cv::VideoCapture capture_;
  double framesPerSecond_ = 0;
  int firstFrame_;
  int framesRead_ = 0;
  std::optional<std::chrono::steady_clock::time_point> start_;
};

}  // namespace recorder

#endif
