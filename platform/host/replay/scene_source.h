// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#ifndef VOD_HOST_REPLAY_SCENE_SOURCE_H
#define VOD_HOST_REPLAY_SCENE_SOURCE_H

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>

namespace vod::host {

/** A scene and the moment that it belongs to. */
struct TimedScene {
  std::string bytes;
  /** Microseconds from the start of the source, at the pace of the recording. */
  std::uint64_t time = 0;
  /** Which of the source's recordings holds it, counted from 0. */
  std::size_t recording = 0;
};

/** The time stamp of a scene; of one that does not parse, what was read before the error, or 0. */
std::uint64_t timestampOf(const std::string& scene);

/** What is played: the scenes of one recording or of several, in the order of their delivery. */
class SceneSource {
 public:
  SceneSource() = default;
  virtual ~SceneSource() = default;
  SceneSource(const SceneSource&) = delete;
  SceneSource& operator=(const SceneSource&) = delete;

  /** Returns none at the end. Damage is reported once. */
  virtual std::optional<TimedScene> next() = 0;
  /** Returns to the start. What cannot be opened any more is reported and has no scenes. */
  virtual void startAgain() = 0;
};

}  // namespace vod::host

#endif
