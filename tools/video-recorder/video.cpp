// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "video-recorder/video.h"

#include <algorithm>
#include <cmath>

namespace recorder {
namespace {

bool isNumber(const std::string& text) {
  return !text.empty() && text.size() < 4 &&
         std::all_of(text.begin(), text.end(), [](char c) { return c >= '0' && c <= '9'; });
}

}  // namespace

Video::Video(const std::string& input, int firstFrame) : firstFrame_(firstFrame) {
  if (isNumber(input)) {
    if (!capture_.open(std::stoi(input), cv::CAP_V4L2)) {
      throw VideoError("camera " + input + ": cannot be opened");
    }
    return;
  }
  // One backend, so that a file gives the same pictures everywhere; others also print complaints of their own.
  if (!capture_.open(input, cv::CAP_FFMPEG)) {
    throw VideoError(input + ": not a video that can be read");
  }
  framesPerSecond_ = capture_.get(cv::CAP_PROP_FPS);
  if (!(framesPerSecond_ > 0)) {
    throw VideoError(input + ": does not say how many frames a second it has");
  }
  // Frame by frame, because seeking lands on other frames in some formats.
  for (int frame = 0; frame < firstFrame; ++frame) {
    if (!capture_.grab()) {
      throw VideoError(input + ": has only " + std::to_string(frame) + " frames, so it cannot begin at frame " +
                       std::to_string(firstFrame));
    }
  }
}

std::optional<Video::Frame> Video::next() {
  Frame frame;
  if (!capture_.read(frame.picture) || frame.picture.empty()) {
    return std::nullopt;
  }
  frame.timestamp = timestampOfNext();
  ++framesRead_;
  return frame;
}

int Video::length() const {
  return isCamera() ? 0 : std::max(0, static_cast<int>(capture_.get(cv::CAP_PROP_FRAME_COUNT)) - firstFrame_);
}

std::uint64_t Video::timestampOfNext() {
  if (!isCamera()) {
    return static_cast<std::uint64_t>(std::llround(framesRead_ * 1e6 / framesPerSecond_));
  }
  const auto now = std::chrono::steady_clock::now();
  if (!start_) {
    start_ = now;
  }
  const auto elapsed = std::chrono::duration_cast<std::chrono::microseconds>(now - *start_);
  return static_cast<std::uint64_t>(elapsed.count());
}

}  // namespace recorder
