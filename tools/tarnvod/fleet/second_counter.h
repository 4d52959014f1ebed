// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#ifndef TARNVOD_COMMAND_SECOND_COUNTER_H
#define TARNVOD_COMMAND_SECOND_COUNTER_H

#include "records/envelope.h"

#include <tarnvod/detection_data.h>

#include <cstdint>
#include <map>
#include <optional>
#include <set>
#include <string>

namespace tarn::command {

/** Name and version of the JSON schema of counts. Fields are only ever added within a version. */
inline constexpr const char* countsSchema = "tarnvod.counts/1";

/** What a camera saw in one second of the wall clock. */
struct SecondCounts {
  struct OfClass {
    std::uint64_t objects = 0;  ///< different ids
    std::uint64_t most = 0;     ///< detections in one frame
  };

  std::int64_t second = 0;  ///< since 1970-01-01 UTC
  std::uint64_t frames = 0;
  std::uint64_t timestamp = 0;  ///< of the last frame, by the service
  std::int64_t arrival = 0;     ///< of the last frame, in microseconds
  bool clockSet = false;        ///< at the last frame
  std::map<std::string, OfClass> classes;
};

/** Counts the frames of one camera, second by second. Not thread-safe. */
class SecondCounter {
 public:
  /** Counts a frame. @return the counts of the second before, if this is the first frame of another one */
  std::optional<SecondCounts> add(const VOD::DetectionData& frame, std::int64_t arrival, bool clockSet);

  /** The counts of a second that is over at this time, in microseconds, if it had frames. */
  std::optional<SecondCounts> takeBefore(std::int64_t now);

  /** The counts of the second that has begun, if it had frames. */
  std::optional<SecondCounts> takeAll();

 private:
  void count(const VOD::DetectionData& frame);

  std::optional<SecondCounts> counts_;
  std::map<std::string, std::set<std::uint32_t>> ids_;  ///< by class
};

/** The message, without the end of its line. */
std::string countsJson(const SecondCounts& counts, const Origin& origin, const Envelope& envelope);

}  // namespace tarn::command

#endif
