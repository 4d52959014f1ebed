// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#ifndef TARNVOD_VIDEO_RECORDER_TRACKER_H
#define TARNVOD_VIDEO_RECORDER_TRACKER_H

#include "video-recorder/sighting.h"

#include <cstdint>
#include <vector>

namespace recorder {

/** A person seen in a frame. */
struct Person {
  std::uint32_t id = 0;
  Box box;
  float margin = 0;
  /** Seen often enough to be no mistake of the detector. */
  bool isConfirmed = false;
};

/** The person `id` is the one that was known as `earlierId`, which is not used again. */
struct Reappearance {
  std::uint32_t id = 0;
  std::uint32_t earlierId = 0;
};

/** What a frame says about the people that are followed. */
struct TrackedFrame {
  std::vector<Person> people;
  std::vector<Reappearance> reappeared;
  /** The ids of people who are not expected back. */
  std::vector<std::uint32_t> gone;
};

/** When a person is confirmed, lost and forgotten. Times are in frames. */
struct TrackerSettings {
  /** A sighting that belongs to nobody starts a new person from this margin on; a weaker one is ignored. */
  float newPersonMargin = 1.75F;
  /** A weaker sighting does not continue a person either. */
  float knownPersonMargin = 0.2F;
  int sightingsToConfirm = 3;
  /** For how long a person who is not seen is expected to walk on, and keeps the id. */
  int framesExpected = 8;
  /** For how long a person who is lost after that is remembered, to be connected with who appears in the same place. */
  int framesRemembered = 50;
};

/** Follows people from frame to frame and gives each one id. Ids begin with 1 and are not used twice. */
class Tracker {
 public:
  explicit Tracker(const TrackerSettings& settings = {}) : settings_(settings) {}

  /** Takes in the sightings of the next frame. */
  TrackedFrame update(const std::vector<Sighting>& sightings);

 private:
  struct Track {
    Person person;
    float velocityX = 0;
    float velocityY = 0;
    int sightings = 1;
    int framesUnseen = 0;
    /** Goes on under another id. */
    bool isConnected = false;
  };

  static void follow(Track& track, const Sighting& sighting);
  static bool isUnseen(const Track& track) { return track.framesUnseen > 0; }
  bool isLost(const Track& track) const;
  bool isGone(const Track& track) const;

  void predict();
  std::vector<Sighting> matchKnownPeople(const std::vector<Sighting>& sightings);
  void startNewPeople(const std::vector<Sighting>& unmatched);
  void confirm(TrackedFrame& frame);
  void connectWithLost(Track& track, TrackedFrame& frame);
  void forget(TrackedFrame& frame);

  TrackerSettings settings_;
  std::vector<Track> tracks_;
  std::uint32_t lastId_ = 0;
};

}  // namespace recorder

#endif
