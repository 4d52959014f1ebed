// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#ifndef TARNVOD_COMMAND_COMPARISON_H
#define TARNVOD_COMMAND_COMPARISON_H

#include "recordings/class_comparison.h"
#include "recordings/recording_scan.h"
#include "records/box.h"
#include "records/json.h"

#include <cstdint>
#include <filesystem>
#include <map>
#include <string>

namespace tarn::command {

struct ComparisonOptions {
  /** The least overlap of two boxes that are the same object. */
  double threshold = 0.5;
  /** How far apart two frames of one moment may be, in seconds. */
  double tolerance = 0.05;
  BoxConvention boxes;
};

/** How a recording differs from a reference. */
struct Comparison {
  std::uint64_t frames = 0;           ///< pairs of frames of one moment
  std::uint64_t referenceFrames = 0;  ///< frames of the reference without a counterpart
  std::uint64_t comparedFrames = 0;   ///< frames of the compared recording without a counterpart
  std::map<std::string, TrackingFigures> classes;
  DamageList damage;

  TrackingFigures total() const;
  bool areEqual() const { return referenceFrames == 0 && comparedFrames == 0 && total().areEqual(); }
};

/** Compares two recordings of the same scene. Frames are of one moment by their time from the first frame. */
Comparison compareRecordings(const std::filesystem::path& reference, const std::filesystem::path& compared,
                             const ComparisonOptions& options);

std::string comparisonText(const Comparison& comparison);
Json toJson(const Comparison& comparison);

}  // namespace tarn::command

#endif
