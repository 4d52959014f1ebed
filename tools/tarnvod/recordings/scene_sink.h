// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#ifndef TARNVOD_COMMAND_SCENE_SINK_H
#define TARNVOD_COMMAND_SCENE_SINK_H

#include "cameras/raw_subscription.h"
#include "recordings/detector.h"
#include "recordings/trigger.h"

#include <recording/recording_writer.h>
#include <recording/segmented_writer.h>

#include <cstdint>
#include <deque>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <vector>

/** Where the scenes of one camera go. */
namespace tarn::command {

/** How a recording is kept. */
struct Keeping {
  std::optional<std::uint64_t> bytes;         ///< all files together; the oldest segments go first
  std::optional<std::uint64_t> microseconds;  ///< recorded time; the oldest segments go first
  std::optional<std::uint64_t> ring;          ///< in microseconds: only what is around an event is kept
  std::optional<std::uint64_t> after;         ///< in microseconds: how long to go on after an event; 10 s
  std::vector<std::string> events;            ///< as `Triggers` takes them

  bool hasSegments() const { return bytes || microseconds || ring; }
  vod::recording::SegmentLimits limits() const;
};

class SceneSink {
 public:
  SceneSink() = default;
  virtual ~SceneSink() = default;
  SceneSink(const SceneSink&) = delete;
  SceneSink& operator=(const SceneSink&) = delete;

  virtual void add(ArrivedScene scene) = 0;
  /** Called now and then, with the monotonic time in microseconds, whether scenes come or not. */
  virtual void tick(std::int64_t /*now*/) {}
  /** Keeps what is held back, as an event does. */
  virtual void trigger(std::int64_t /*now*/) {}

  std::uint64_t frames() const { return frames_; }
  std::uint64_t bytes() const { return bytes_; }

 protected:
  /** Counts a scene that has been written. */
  void count(const ArrivedScene& scene);

 private:
  std::uint64_t frames_ = 0;
  std::uint64_t bytes_ = 0;
};

/** @throw vod::recording::RecordingError  when the folder cannot be used */
std::unique_ptr<SceneSink> makeSink(const std::filesystem::path& folder, const std::string& detector,
                                    const Keeping& keeping);

}  // namespace tarn::command

#endif
