// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "video-recorder/background.h"

#include "video-recorder/video.h"

#include <opencv2/imgcodecs.hpp>

#include <algorithm>

namespace recorder {
namespace {

constexpr std::size_t mostKept = 64;
/** Of large pictures fewer are kept. */
constexpr std::size_t mostBytes = 256U << 20U;
constexpr std::size_t fewest = 8;
constexpr int jpegQuality = 85;

std::size_t roomFor(const cv::Mat& picture) {
  return std::clamp(mostBytes / (picture.total() * picture.elemSize()), fewest, mostKept);
}

/** Sets a row of bytes to the median of the pictures' rows. */
void writeMedian(const std::vector<cv::Mat>& pictures, int row, cv::Mat& result) {
  std::vector<unsigned char> values(pictures.size());
  const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
  unsigned char* const written = result.ptr(row);
  const int bytes = result.cols * result.channels();
  for (int place = 0; place < bytes; ++place) {
    std::transform(pictures.begin(), pictures.end(), values.begin(),
                   [&](const cv::Mat& picture) { return picture.ptr(row)[place]; });
    std::nth_element(values.begin(), middle, values.end());
    written[place] = *middle;
  }
}

}  // namespace

void Background::add(const cv::Mat& picture) {
  if (added_++ % distance_ != 0) {
    return;
  }
  kept_.push_back(picture.clone());
  if (kept_.size() >= roomFor(picture)) {
    keepEverySecond();
  }
}

void Background::keepEverySecond() {
  std::size_t kept = 0;
  for (std::size_t index = 0; index < kept_.size(); index += 2) {
    kept_[kept++] = kept_[index];
  }
  kept_.resize(kept);
  distance_ *= 2;
}

cv::Mat Background::median() const {
  if (kept_.empty()) {
    return {};
  }
  cv::Mat result(kept_.front().size(), kept_.front().type());
  for (int row = 0; row < result.rows; ++row) {
    writeMedian(kept_, row, result);
  }
  return result;
}

void Background::write(const std::filesystem::path& file) const {
  if (!cv::imwrite(file.string(), median(), {cv::IMWRITE_JPEG_QUALITY, jpegQuality})) {
    throw VideoError(file.string() + ": cannot be written");
  }
}

}  // namespace recorder
