// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#ifndef VOD_HOST_REHEARSAL_SCENE_PLAYER_H
#define VOD_HOST_REHEARSAL_SCENE_PLAYER_H

#include <tarnvod/video_object_detection.pb.h>

#include <chrono>
#include <cstdint>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace vod::host {

/** What is wrong with the scenes of a channel; counts, because faults may overlap. */
struct SceneFaults {
  int silent = 0;
  int damaged = 0;
  int empty = 0;
  int repeating = 0;
  int renumbering = 0;
  std::chrono::microseconds jump{0};
  /** Ids, in the recording, of the classes that the detector has lost. */
  std::multiset<std::uint32_t> lostClasses;
  /** How often the detector has given other ids to its classes. */
  std::uint32_t classChanges = 0;
};

/**
 * The scenes of a channel while a schedule is executed: the first ten seconds of its recording again and again, with
 * time stamps that advance and with ids that are never used twice.
 */
class ScenePlayer {
 public:
  /** @throw vod::recording::RecordingError  when the recording cannot be read */
  explicit ScenePlayer(const std::string& folder);

  /** The next scene at this time since the start, with what is wrong with it. */
  std::string next(std::chrono::microseconds now);

  /** The detector's description, without the classes that it has lost, and with the present ids of the others. */
  std::string detectorInformation() const;
  /** The id, in the recording, of the detector's class with this place in its list, from 1; the list begins again at its end. */
  std::uint32_t classAt(int place) const;

  SceneFaults faults;

 private:
  void goOn();
  void endAllObjects(::VOD::Scene& scene);
  void renumber(::VOD::Scene& scene) const;
  void follow(const ::VOD::Scene& scene);
  void dropLostClasses(::VOD::Scene& scene) const;
  void changeClasses(::VOD::Scene& scene) const;
  /** As it is after the detector has changed its classes. */
  std::uint32_t presentClassId(std::uint32_t recorded) const;
  std::string damaged(std::string bytes) const;

  ::VOD::DetectorInformation detector_;
  std::vector<::VOD::Scene> scenes_;
  std::uint64_t firstTimestamp_ = 0;
  std::uint64_t lastTimestamp_ = 0;
  /** More than the largest id in the recording. */
  std::uint32_t idsPerPass_ = 1;
  /** More than the largest id of a class. */
  std::uint32_t classIds_ = 1;
  std::size_t position_ = 0;
  std::uint64_t sent_ = 0;
  std::uint32_t idOffset_ = 0;
  bool restarts_ = false;
  std::set<std::uint32_t> objects_;
};

}  // namespace vod::host

#endif
