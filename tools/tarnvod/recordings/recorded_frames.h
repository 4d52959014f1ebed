// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#ifndef TARNVOD_COMMAND_RECORDED_FRAMES_H
#define TARNVOD_COMMAND_RECORDED_FRAMES_H

#include "recordings/detector.h"
#include "recordings/recording_scan.h"
#include "records/json.h"

#include <nlohmann/json.hpp>
#include <tarnvod/video_object_detection.pb.h>

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

namespace tarn::command {

/** A recording's frames in any order. Holds where they are, not what is in them; may be read by several threads. */
class RecordedFrames {
 public:
  /** The most frames that are given at once, and about the most bytes of their scenes. */
  static constexpr std::size_t mostAtOnce = 200;
  static constexpr std::size_t mostBytesAtOnce = 64U << 10U;
  /** Scenes with more bytes are too large to be viewed. */
  static constexpr std::size_t largestFrame = 256U << 10U;
  /** The frames that are kept track of; what follows is not shown. Nearly five hours at 30 frames a second. */
  static constexpr std::size_t mostFrames = 500'000;

  /** Frames that follow one another. */
  struct Excerpt {
    std::uint64_t count;
    std::string json;  ///< an array
  };

  /** @throw vod::recording::RecordingError  when the scenes cannot be opened */
  explicit RecordedFrames(const std::filesystem::path& folder);

  /**
   * What `inspect --json` prints, and `frameSeconds`, the time of each frame that can be read and shown, and
   * `eventList`, each event with the number of its frame among those, counted from 0.
   */
  const Json& overview() const { return overview_; }

  /**
   * Up to `count` frames as `watch --json` prints them, from the one with the number `first` on, counted
   * from 0. Fewer at the end and where frames are large, but at least one. A frame that is too large to be viewed has no
   * detections and events, and a member `omittedBytes`.
   */
  Excerpt frames(std::uint64_t first, std::uint64_t count) const;

  /** The frames that can be given. */
  std::uint64_t count() const { return places_.size(); }
  const DamageList& damage() const { return damage_; }

 private:
  /** Where a frame is: in which segment, and where in its file. */
  struct Place {
    std::size_t part;
    std::int64_t offset;
  };

  void scan();
  /** @throw Failure  when the recording has changed meanwhile */
  ::VOD::Scene sceneAt(const Place& place) const;

  const std::filesystem::path folder_;
  SceneNames names_;
  DamageList damage_;
  Json overview_;
  std::vector<std::filesystem::path> parts_;
  std::vector<Place> places_;
};

}  // namespace tarn::command

#endif
