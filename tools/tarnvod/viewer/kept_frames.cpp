// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "viewer/kept_frames.h"

#include "viewer/live_history.h"

#include <algorithm>
#include <utility>

namespace tarn::command {

void KeptFrames::add(Clock::time_point at, std::string json) {
  const Lock lock(mutex_);
  bytes_ += json.size();
  frames_.push_back({at, std::move(json)});
  while (!frames_.empty() && (bytes_ > limits_.bytes || at - frames_.front().at > limits_.age)) {
    bytes_ -= frames_.front().json.size();
    frames_.pop_front();
  }
}

std::string KeptFrames::since(std::int64_t milliseconds) const {
  const Lock lock(mutex_);
  const auto first = std::partition_point(frames_.begin(), frames_.end(), [milliseconds](const Frame& frame) {
    return millisecondsOf(frame.at) < milliseconds;
  });
  std::string answer = R"({"frames":[)";
  std::int64_t latest = 0;
  auto frame = first;
  for (; frame != frames_.end(); ++frame) {
    const std::int64_t at = millisecondsOf(frame->at);
    if (answer.size() > limits_.bytesInAnswer && at != latest) {
      break;
    }
    latest = at;
    answer.append(frame == first ? "" : ",").append("{\"at\":").append(std::to_string(at));
    answer.append(",\"frame\":").append(frame->json).append("}");
  }
  return answer.append(frame == frames_.end() ? "],\"more\":false}\n" : "],\"more\":true}\n");
}

}  // namespace tarn::command
