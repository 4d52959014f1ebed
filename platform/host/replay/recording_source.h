// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#ifndef VOD_HOST_REPLAY_RECORDING_SOURCE_H
#define VOD_HOST_REPLAY_RECORDING_SOURCE_H

#include "recording/recording_reader.h"
#include "replay/scene_source.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

namespace vod::host {

/** The scenes of one recording, at the times of their time stamps. */
class RecordingSource : public SceneSource {
 public:
  /** @throw vod::recording::RecordingError  when the first scene cannot be read; a recording without scenes is valid */
  explicit RecordingSource(std::string folder);

  std::optional<TimedScene> next() override;
  void startAgain() override;

 private:
  /** Continues with the next segment after a damage. */
  void skipDamage();
  std::uint64_t timeOf(const std::string& scene);

  const std::string folder_;
  std::unique_ptr<recording::RecordingReader> reader_;
  recording::NextScene upcoming_;
  bool damageReported_ = false;
  std::optional<std::uint64_t> firstTimestamp_;
};

}  // namespace vod::host

#endif
