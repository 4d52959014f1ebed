// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#ifndef TARNVOD_COMMAND_RECORDING_SUMMARY_H
#define TARNVOD_COMMAND_RECORDING_SUMMARY_H

#include "recordings/detector.h"
#include "recordings/recording_scan.h"
#include "records/json.h"

#include <cstdint>
#include <filesystem>
#include <map>
#include <string>
#include <vector>

namespace tarn::command {

/** When an object was seen, in seconds from the recording's start. */
struct ObjectLife {
  std::string className;
  double first = 0;
  double last = 0;
  std::uint64_t frames = 0;
  std::uint64_t firstFrame = 0;
  std::uint64_t lastFrame = 0;
};

/** What is in a recording. */
struct RecordingSummary {
  std::string folder;
  std::uint64_t frames = 0;
  std::uint64_t bytes = 0;
  double duration = 0;         ///< in seconds
  std::uint64_t restarts = 0;  ///< how often time stamps went back: a replay that started again was recorded
  std::uint64_t deleted = 0;
  std::uint64_t connected = 0;
  std::map<std::string, std::uint64_t> detectionsByClass;
  std::map<std::uint32_t, ObjectLife> objects;
  DamageList damage;

  /** Frames per second; 0 for less than two frames. */
  double rate() const;
  std::map<std::string, std::uint64_t> objectsByClass() const;
};

/** The names in a recording's detector information. What is missing or damaged there is added to `damage`. */
SceneNames readSceneNames(const std::filesystem::path& folder, DamageList& damage);

RecordingSummary summarizeRecording(const std::filesystem::path& folder);

/** The summary for people: one value a line, damage, a line for each object with a bar of when it was seen. */
std::string summaryText(const RecordingSummary& summary);

Json toJson(const RecordingSummary& summary);

}  // namespace tarn::command

#endif
