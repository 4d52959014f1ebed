// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#ifndef TARNVOD_COMMAND_CAMERA_WATCH_H
#define TARNVOD_COMMAND_CAMERA_WATCH_H

#include "rehearsal/findings.h"

#include <functional>
#include <map>
#include <optional>
#include <set>
#include <string>

namespace tarn::command {

/** Follows what is observed of the cameras: which are set up, and what has been received since the last fault. */
class CameraWatch {
 public:
  CameraWatch(const vod::schedule::Schedule& schedule, const Expectation& expectation);

  void take(const vod::schedule::Observation& observation);

  /** The cameras that are set up now, with the classes received since the last fault, set-up or round. */
  std::map<int, std::set<std::string>> cameras() const;
  /** The first camera that misses something. */
  struct Blindness {
    /** Whether it is set up, and misses a class only. */
    bool isSetUp;
    /** For people. */
    std::string text;
  };
  /** None if all is as expected. */
  std::optional<Blindness> blindness() const;
  const std::vector<Recovery>& recoveries() const { return recoveries_; }

 private:
  void takeFault(const vod::schedule::Observation& observation);
  void endSubscriptions(const std::optional<int>& camera);
  void noteRecovery(vod::schedule::Time now);

  const vod::schedule::Schedule& schedule_;
  const Expectation& expectation_;
  std::map<int, std::set<std::int64_t>> subscribers_;
  std::map<int, std::set<std::string>> received_;
  /** The fault, or its end, after which a recovery is awaited. */
  struct Disturbance {
    vod::schedule::Kind kind;
    vod::schedule::Time at;
  };
  std::optional<Disturbance> disturbance_;
  std::vector<Recovery> recoveries_;
};

}  // namespace tarn::command

#endif
