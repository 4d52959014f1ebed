// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#ifndef VOD_HOST_REPLAY_SESSION_SOURCE_H
#define VOD_HOST_REPLAY_SESSION_SOURCE_H

#include "recording/checked_reader.h"
#include "replay/scene_source.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace vod::host {

/**
 * The scenes of several cameras in the order in which they arrived, at the times of their arrival by the monotonic clock
 * that the cameras had in common. Holds one scene of each camera.
 *
 * A scene without an arrival time follows the one before it as its time stamp says. The monotonic clock starts again when
 * the machine does: the scenes after that follow those before it, without the pause in between.
 */
class SessionSource : public SceneSource {
 public:
  /** @param folders  the cameras' recordings; one that cannot be opened is reported and has no scenes */
  explicit SessionSource(const std::vector<std::string>& folders);

  std::optional<TimedScene> next() override;
  void startAgain() override;

 private:
  /** The upcoming scene of a camera. */
  struct Head {
    std::string bytes;
    std::uint64_t timestamp = 0;
    recording::BootId boot{};
    std::optional<recording::Arrival> arrival;
    /** None until it is known where the clock of the machine's boot begins in the session. */
    std::optional<std::uint64_t> time;
  };
  struct Camera {
    std::string folder;
    std::unique_ptr<recording::CheckedReader> reader;
    std::optional<Head> head;
    std::uint64_t time = 0;                  ///< of the last scene
    std::optional<std::uint64_t> timestamp;  ///< of the last scene
    bool damageReported = false;
  };
  /** Where a boot's monotonic clock is in the session. */
  struct BootClock {
    recording::BootId boot{};
    std::int64_t monotonic = 0;
    std::uint64_t time = 0;
  };

  static void open(Camera& camera);
  void advance(Camera& camera);
  static std::optional<recording::CheckedScene> read(Camera& camera);
  void setTime(const Camera& camera, Head& head) const;
  /** Begins the clock of the boot that came next, when no upcoming scene has a time. */
  void beginNextBoot();
  Camera* earliest();

  std::vector<Camera> cameras_;
  std::optional<BootClock> clock_;
  std::uint64_t time_ = 0;
};

}  // namespace vod::host

#endif
