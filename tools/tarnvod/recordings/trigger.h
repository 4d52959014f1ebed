// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#ifndef TARNVOD_COMMAND_TRIGGER_H
#define TARNVOD_COMMAND_TRIGGER_H

#include "recordings/detector.h"

#include <tarnvod/video_object_detection.pb.h>

#include <cstdint>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace tarn::command {

/** What makes a recorder keep what it holds: any of the events that were named. */
class Triggers {
 public:
  /**
   * @param names  "class:human", "deleted", "connected", "silence:5" (seconds without a frame), "signal" (SIGUSR1)
   * @throw UsageError  when one of them is none of these
   */
  explicit Triggers(const std::vector<std::string>& names);

  /** Whether one of the events is in the scene. */
  bool isIn(const ::VOD::Scene& scene, const SceneNames& names) const;

  /** After which time without a frame, in microseconds; none when silence is not an event. */
  const std::optional<std::int64_t>& silence() const { return silence_; }
  bool hasSignal() const { return signal_; }

 private:
  void add(const std::string& name);

  std::set<std::string> classes_;
  bool deleted_ = false;
  bool connected_ = false;
  bool signal_ = false;
  std::optional<std::int64_t> silence_;
};

}  // namespace tarn::command

#endif
