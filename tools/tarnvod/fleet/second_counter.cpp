// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "fleet/second_counter.h"

#include "records/json.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <utility>

namespace tarn::command {
namespace {

constexpr std::int64_t microsecondsPerSecond = 1'000'000;

}  // namespace

std::optional<SecondCounts> SecondCounter::add(const VOD::DetectionData& frame, std::int64_t arrival, bool clockSet) {
  const std::int64_t second = arrival / microsecondsPerSecond;
  std::optional<SecondCounts> finished;
  if (counts_ && counts_->second != second) {
    finished = takeAll();
  }
  if (!counts_) {
    counts_.emplace().second = second;
  }
  ++counts_->frames;
  counts_->timestamp = frame.timestamp;
  counts_->arrival = arrival;
  counts_->clockSet = clockSet;
  count(frame);
  return finished;
}

void SecondCounter::count(const VOD::DetectionData& frame) {
  std::map<std::string, std::uint64_t> detections;
  for (const VOD::Data& detection : frame.detections) {
    ++detections[detection.className];
    ids_[detection.className].insert(detection.objectId);
  }
  for (const auto& [name, number] : detections) {
    SecondCounts::OfClass& counts = counts_->classes[name];
    counts.most = std::max(counts.most, number);
    counts.objects = ids_[name].size();
  }
}

std::optional<SecondCounts> SecondCounter::takeBefore(std::int64_t now) {
  const bool isOver = counts_ && counts_->second != now / microsecondsPerSecond;
  return isOver ? takeAll() : std::nullopt;
}

std::optional<SecondCounts> SecondCounter::takeAll() {
  ids_.clear();
  return std::exchange(counts_, std::nullopt);
}

std::string countsJson(const SecondCounts& counts, const Origin& origin, const Envelope& envelope) {
  Json classes = Json::array();
  for (const auto& [name, ofClass] : counts.classes) {
    classes.push_back({{"className", name}, {"objects", ofClass.objects}, {"most", ofClass.most}});
  }
  std::string text = oneLine({{"schema", countsSchema},
                              {"site", origin.site},
                              {"device", origin.device},
                              {"start", origin.start},
                              {"sequence", envelope.sequence},
                              {"arrival", envelope.arrival},
                              {"clockSet", envelope.clockSet},
                              {"camera", envelope.camera},
                              {"timestamp", counts.timestamp},
                              {"second", counts.second},
                              {"frames", counts.frames},
                              {"classes", std::move(classes)}});
  text.pop_back();
  return text;
}

}  // namespace tarn::command
