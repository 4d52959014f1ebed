// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#ifndef TARNVOD_COMMAND_CLASS_COMPARISON_H
#define TARNVOD_COMMAND_CLASS_COMPARISON_H

#include "records/box.h"

#include <cstdint>
#include <map>
#include <optional>
#include <set>
#include <utility>
#include <vector>

namespace tarn::command {

/** An object of a frame. */
struct SeenObject {
  std::uint32_t id = 0;
  Box box;
};

/** The intersection of two boxes by their union, from 0 to 1; 1 for equal boxes without an area. */
double overlap(const Box& left, const Box& right);

/** How the tracking of one recording differs from that of a reference, by the definitions of the literature. */
struct TrackingFigures {
  std::uint64_t reference = 0;  ///< detections in the reference
  std::uint64_t compared = 0;   ///< detections in the recording that is compared with it
  std::uint64_t referenceObjects = 0;
  std::uint64_t comparedObjects = 0;
  std::uint64_t matched = 0;
  std::uint64_t missed = 0;            ///< in the reference only
  std::uint64_t added = 0;             ///< in the compared recording only
  std::uint64_t identitySwitches = 0;  ///< an object of the reference is matched with another one than the last time
  std::uint64_t identityMatches = 0;   ///< IDTP: matched frames under the best one-to-one mapping of all tracks

  TrackingFigures& operator+=(const TrackingFigures& other);
  /** 1 - (missed + added + switches) / reference; none where the reference has no detection. */
  std::optional<double> mota() const;
  /** 2 IDTP / (reference + compared); none where neither has a detection. */
  std::optional<double> idf1() const;
  bool areEqual() const { return missed == 0 && added == 0 && identitySwitches == 0 && matched == identityMatches; }
};

/**
 * Compares the objects of one class, frame by frame. Memory grows with the number of objects, not with that of frames.
 */
class ClassComparison {
 public:
  /** @param threshold  the least overlap of two boxes that are the same object */
  explicit ClassComparison(double threshold) : threshold_(threshold) {}

  void addFrame(const std::vector<SeenObject>& reference, const std::vector<SeenObject>& compared);

  TrackingFigures figures() const;

 private:
  using Pair = std::pair<std::size_t, std::size_t>;

  /** Pairs of objects of a frame: those of the frame before where they still overlap, then the best of the others. */
  std::vector<Pair> match(const std::vector<SeenObject>& reference, const std::vector<SeenObject>& compared) const;
  void noteOverlaps(const std::vector<SeenObject>& reference, const std::vector<SeenObject>& compared);
  std::uint64_t identityMatches() const;

  const double threshold_;
  TrackingFigures figures_;
  std::set<std::uint32_t> referenceIds_;
  std::set<std::uint32_t> comparedIds_;
  /** With which object each object of the reference was matched the last time. */
  std::map<std::uint32_t, std::uint32_t> lastMatch_;
  /** The matches of the last frame. */
  std::map<std::uint32_t, std::uint32_t> previous_;
  /** In how many frames two objects overlap. */
  std::map<std::uint32_t, std::map<std::uint32_t, std::uint64_t>> overlaps_;
};

}  // namespace tarn::command

#endif
