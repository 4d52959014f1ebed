// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#ifndef VOD_HOST_REPLAY_PLAYBACK_H
#define VOD_HOST_REPLAY_PLAYBACK_H

#include "recording/recording_reader.h"

#include <vod_host.h>

#include <chrono>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>

namespace vod::host {

/** The scenes of a recording in the order and at the times in which they are to be delivered. */
class Playback {
 public:
  /** @throw vod::recording::RecordingError  when the first scene cannot be read; a recording without scenes is valid */
  Playback(std::string folder, Replay replay);

  struct Item {
    std::string scene;
    /** When to deliver it, from the start of the playback; none means at once. */
    std::optional<std::chrono::microseconds> due;
  };
  /** Returns none at the end of a recording that does not loop or has no scenes. Damage is reported once. */
  std::optional<Item> next();

 private:
  std::optional<std::string> nextScene();
  /** Continues with the next segment after a damage. */
  void skipDamage();
  void startAgain();
  std::chrono::microseconds dueTimeOf(const std::string& scene);

  const std::string folder_;
  const Replay replay_;
  std::unique_ptr<recording::RecordingReader> reader_;
  recording::NextScene upcoming_;
  bool damageReported_ = false;

  /** Of the first scene of this pass. */
  std::optional<std::uint64_t> firstTimestamp_;
  std::chrono::microseconds passStart_{0};
  std::chrono::microseconds lastDue_{0};
  /** Between the last two scenes: the pause after the last one. Recordings without any pace loop ten times a second. */
  std::chrono::microseconds interval_{100'000};
};

}  // namespace vod::host

#endif
