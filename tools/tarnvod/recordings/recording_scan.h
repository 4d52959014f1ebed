// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#ifndef TARNVOD_COMMAND_RECORDING_SCAN_H
#define TARNVOD_COMMAND_RECORDING_SCAN_H

#include <recording/checked_reader.h>
#include <recording/recording.h>
#include <recording/scene_index.h>
#include <tarnvod/video_object_detection.pb.h>

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tarn::command {

/** One scene of a recording. */
struct ScannedScene {
  std::uint64_t number = 0;  ///< counted from 1
  std::size_t part = 0;      ///< which of the recording's segments holds it, counted from 0
  std::int64_t offset = 0;   ///< where it begins in that segment's file
  std::string_view bytes;    ///< as the service sent it; valid during the visit
  std::optional<vod::recording::Arrival> arrival;
  ::VOD::Scene scene;
};

/** The recording's time in seconds from its first frame: time stamps are microseconds. */
class RecordingClock {
 public:
  void advanceTo(std::uint64_t timestamp);
  double seconds() const { return static_cast<double>(elapsed_) / 1e6; }
  std::uint64_t microseconds() const { return elapsed_; }
  /** How often time stamps went back; time then goes on from where it was. */
  std::uint64_t restarts() const { return restarts_; }

 private:
  std::optional<std::uint64_t> latest_;
  std::uint64_t elapsed_ = 0;
  std::uint64_t restarts_ = 0;
};

/** The damage in a recording: the first 20 entries, and how many there are. */
class DamageList {
 public:
  void add(vod::recording::Damage damage);
  const std::vector<vod::recording::Damage>& first() const { return first_; }
  std::uint64_t count() const { return count_; }

 private:
  std::vector<vod::recording::Damage> first_;
  std::uint64_t count_ = 0;
};

/** @throw Failure  when there is damage: names the first, and says what there is nevertheless */
void failOnDamage(const DamageList& damage, const std::string& nevertheless);

/**
 * Reads a recording from its start, segment by segment, never holding more than one scene. Shows its progress on a terminal.
 *
 * @param visit   gets each scene that can be read; false ends the reading
 * @param damage  gets what cannot be read
 * @throw vod::recording::RecordingError  when the scenes cannot be opened
 * @throw Failure                         when the command has been asked to end
 */
void scanRecording(const std::filesystem::path& folder, const std::function<bool(const ScannedScene&)>& visit,
                   DamageList& damage);

/**
 * As above, without parsing: what is not a `VOD.Scene` is visited too.
 */
void scanBytes(const std::filesystem::path& folder,
               const std::function<bool(const vod::recording::CheckedScene&)>& visit, DamageList& damage);

}  // namespace tarn::command

#endif
