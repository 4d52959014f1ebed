// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#ifndef VOD_HOST_REPLAY_PLAYBACK_H
#define VOD_HOST_REPLAY_PLAYBACK_H

#include "replay/scene_source.h"

#include <vod_host.h>

#include <chrono>
#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace vod::host {

/** The scenes of a source in the order and at the times in which they are to be delivered. */
class Playback {
 public:
  Playback(std::unique_ptr<SceneSource> source, Replay replay);

  struct Item {
    std::string scene;
    /** Which of the source's recordings holds it, counted from 0. */
    std::size_t recording = 0;
    /** When to deliver it, from the start of the playback; none means at once. */
    std::optional<std::chrono::microseconds> due;
  };
  /** Returns none at the end of a source that does not loop or has no scenes. */
  std::optional<Item> next();

 private:
  std::chrono::microseconds dueTimeOf(const TimedScene& scene);

  const std::unique_ptr<SceneSource> source_;
  const Replay replay_;
  bool passHasScenes_ = false;
  std::chrono::microseconds passStart_{0};
  std::chrono::microseconds lastDue_{0};
  /** Of each recording's last scene. */
  std::vector<std::optional<std::chrono::microseconds>> lastDueOf_;
  /** Between the last two scenes of one recording: the pause after the last one. Without any pace, ten times a second. */
  std::chrono::microseconds interval_{100'000};
};

}  // namespace vod::host

#endif
