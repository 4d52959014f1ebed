// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "recording/segmented_writer.h"

#include "recording/segments.h"

#include <algorithm>
#include <system_error>
#include <utility>

namespace vod::recording {
namespace {

/** Folders that are being made or removed; what is left of them after a crash holds nothing that is of use. */
constexpr const char* temporaryName = ".segment-in-work";

std::uint64_t bytesOf(const std::filesystem::path& folder) {
  std::uint64_t bytes = 0;
  for (const char* name : {detectorInformationFileName, scenesFileName, indexFileName}) {
    std::error_code isAbsent;
    const std::uintmax_t size = std::filesystem::file_size(folder / name, isAbsent);
    bytes += isAbsent ? 0 : size;
  }
  return bytes;
}

void check(const std::error_code& error, const std::filesystem::path& path) {
  if (error) {
    throw RecordingError(path.string() + ": " + error.message());
  }
}

}  // namespace

std::uint64_t SegmentLimits::segmentBytes() const {
  constexpr std::uint64_t largest = 1U << 30U;
  return std::min(largest, bytes / 8);
}

std::uint64_t SegmentLimits::segmentMicroseconds() const {
  return microseconds / 16;
}

SegmentedWriter::SegmentedWriter(std::filesystem::path folder, std::string detectorInformation,
                                 const SegmentLimits& limits)
    : folder_(std::move(folder)), detectorInformation_(std::move(detectorInformation)), limits_(limits) {
  std::error_code error;
  if (std::filesystem::exists(folder_ / scenesFileName, error)) {
    throw RecordingError(folder_.string() + ": holds a recording without segments");
  }
  std::filesystem::create_directories(folder_, error);
  check(error, folder_);
  std::filesystem::remove_all(folder_ / temporaryName, error);
  check(error, folder_ / temporaryName);
  findSegments();
}

void SegmentedWriter::findSegments() {
  for (const auto& part : partsOf(folder_)) {
    if (const auto number = segmentNumber(part.filename().string())) {
      SceneIndex index(part);
      Segment segment{*number, bytesOf(part), index.boot(), 0, 0};
      if (index.size() > 0) {
        segment.first = index.at(0).value_or(IndexEntry()).arrival.monotonic;
        segment.last = index.at(index.size() - 1).value_or(IndexEntry()).arrival.monotonic;
      }
      segments_.push_back(segment);
    }
  }
}

void SegmentedWriter::append(std::string_view scene, const Arrival& arrival) {
  if (!writer_ || isFull(scene, arrival)) {
    beginSegment(arrival);
  }
  writer_->append(scene, arrival);
  segments_.back().bytes = writer_->size();
  segments_.back().last = arrival.monotonic;
}

bool SegmentedWriter::isFull(std::string_view scene, const Arrival& arrival) const {
  constexpr std::uint64_t longestPrefix = 5;
  const Segment& segment = segments_.back();
  const auto age = static_cast<std::uint64_t>(std::max<std::int64_t>(0, arrival.monotonic - segment.first));
  const bool isEmpty = segment.bytes <= detectorInformation_.size() + indexEntrySize;
  return age >= limits_.segmentMicroseconds() ||
         (!isEmpty && segment.bytes + scene.size() + longestPrefix + indexEntrySize > limits_.segmentBytes());
}

void SegmentedWriter::beginSegment(const Arrival& arrival) {
  writer_.reset();
  removeOldSegments();
  const std::uint64_t number = segments_.empty() ? 1 : segments_.back().number + 1;
  // A segment has its name once all of its files are there.
  const std::filesystem::path temporary = folder_ / temporaryName;
  writer_.emplace(temporary, detectorInformation_, currentBoot());
  std::error_code error;
  std::filesystem::rename(temporary, folder_ / segmentName(number), error);
  if (error) {
    writer_.reset();
  }
  check(error, folder_ / segmentName(number));
  segments_.push_back({number, writer_->size(), currentBoot(), arrival.monotonic, arrival.monotonic});
}

void SegmentedWriter::removeOldSegments() {
  const auto isTooMuch = [this] {
    const std::uint64_t bytes = bytesOfSegments();
    const bool isTooLarge = limits_.bytes != SegmentLimits::unlimited && bytes + limits_.segmentBytes() > limits_.bytes;
    return isTooLarge || ageOf(0) >= limits_.microseconds;
  };
  while (!segments_.empty() && isTooMuch()) {
    remove(segments_.front());
    segments_.pop_front();
  }
}

void SegmentedWriter::remove(const Segment& segment) const {
  const std::filesystem::path folder = folder_ / segmentName(segment.number);
  const std::filesystem::path temporary = folder_ / temporaryName;
  std::error_code error;
  std::filesystem::rename(folder, temporary, error);
  check(error, folder);
  std::filesystem::remove_all(temporary, error);
  check(error, temporary);
}

std::uint64_t SegmentedWriter::bytesOfSegments() const {
  std::uint64_t bytes = 0;
  for (const Segment& segment : segments_) {
    bytes += segment.bytes;
  }
  return bytes;
}

std::uint64_t SegmentedWriter::ageOf(std::size_t position) const {
  std::uint64_t age = 0;
  for (std::size_t next = position + 1; next < segments_.size(); ++next) {
    const Segment& segment = segments_[next];
    const Segment& before = segments_[next - 1];
    const bool isOneClock = segment.boot == before.boot && segment.first >= before.last;
    const std::int64_t from = isOneClock ? before.last : segment.first;
    age += static_cast<std::uint64_t>(std::max<std::int64_t>(0, segment.last - from));
  }
  return age;
}

}  // namespace vod::recording
