// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "recordings/scene_sink.h"

#include <algorithm>
#include <limits>
#include <utility>

namespace tarn::command {
namespace {

constexpr std::uint64_t defaultAfter = 10'000'000;

class PlainSink : public SceneSink {
 public:
  PlainSink(const std::filesystem::path& folder, const std::string& detector) : writer_(folder, detector) {}

  void add(ArrivedScene scene) override {
    writer_.append(scene.bytes, scene.arrival);
    count(scene);
  }

 private:
  vod::recording::RecordingWriter writer_;
};

class SegmentSink : public SceneSink {
 public:
  SegmentSink(const std::filesystem::path& folder, const std::string& detector, const Keeping& keeping)
      : writer_(folder, detector, keeping.limits()) {}

  void add(ArrivedScene scene) override {
    writer_.append(scene.bytes, scene.arrival);
    count(scene);
  }

 private:
  vod::recording::SegmentedWriter writer_;
};

/**
 * Holds the latest scenes in memory. An event writes them, and what comes in the time after it, as a segment; one event
 * within that time makes it longer.
 */
class RingSink : public SceneSink {
 public:
  RingSink(const std::filesystem::path& folder, const std::string& detector, const Keeping& keeping)
      : writer_(folder, detector, keeping.limits()),
        names_(detector),
        triggers_(keeping.events),
        ring_(static_cast<std::int64_t>(*keeping.ring)),
        after_(static_cast<std::int64_t>(keeping.after.value_or(defaultAfter))) {}

  void add(ArrivedScene scene) override {
    const std::int64_t now = scene.arrival.monotonic;
    isSilent_ = false;
    lastArrival_ = now;
    static_cast<void>(scene_.ParseFromString(scene.bytes));  // of damaged bytes, what could be read
    if (triggers_.isIn(scene_, names_)) {
      trigger(now);
    }
    if (now <= until_) {
      write(scene);
    } else {
      writer_.endSegment();
      hold(std::move(scene));
    }
  }

  void tick(std::int64_t now) override {
    const bool isSilent = triggers_.silence() && lastArrival_ && now - *lastArrival_ >= *triggers_.silence();
    if (isSilent && !isSilent_) {
      trigger(now);
    }
    isSilent_ = isSilent;
  }

  void trigger(std::int64_t now) override {
    until_ = now + after_;
    for (const ArrivedScene& scene : held_) {
      write(scene);
    }
    held_.clear();
  }

 private:
  void write(const ArrivedScene& scene) {
    writer_.append(scene.bytes, scene.arrival);
    count(scene);
  }

  void hold(ArrivedScene scene) {
    const std::int64_t oldest = scene.arrival.monotonic - ring_;
    held_.push_back(std::move(scene));
    while (held_.front().arrival.monotonic < oldest) {
      held_.pop_front();
    }
  }

  vod::recording::SegmentedWriter writer_;
  const SceneNames names_;
  const Triggers triggers_;
  const std::int64_t ring_;
  const std::int64_t after_;
  std::deque<ArrivedScene> held_;
  ::VOD::Scene scene_;
  /** Until when scenes are written at once. */
  std::int64_t until_ = std::numeric_limits<std::int64_t>::min();
  std::optional<std::int64_t> lastArrival_;
  bool isSilent_ = false;
};

}  // namespace

vod::recording::SegmentLimits Keeping::limits() const {
  vod::recording::SegmentLimits limits;
  limits.bytes = bytes.value_or(limits.bytes);
  limits.microseconds = microseconds.value_or(limits.microseconds);
  return limits;
}

void SceneSink::count(const ArrivedScene& scene) {
  ++frames_;
  bytes_ += scene.bytes.size();
}

std::unique_ptr<SceneSink> makeSink(const std::filesystem::path& folder, const std::string& detector,
                                    const Keeping& keeping) {
  if (keeping.ring) {
    return std::make_unique<RingSink>(folder, detector, keeping);
  }
  if (keeping.hasSegments()) {
    return std::make_unique<SegmentSink>(folder, detector, keeping);
  }
  return std::make_unique<PlainSink>(folder, detector);
}

}  // namespace tarn::command
