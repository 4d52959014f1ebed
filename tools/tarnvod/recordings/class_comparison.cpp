// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "recordings/class_comparison.h"

#include "recordings/assignment.h"

#include <algorithm>

namespace tarn::command {
namespace {

double area(const Box& box) {
  return std::max(0.0, box.right - box.left) * std::max(0.0, box.bottom - box.top);
}

/** The objects of the reference whose tracks compete for the same tracks, found from one of them. */
class Component {
 public:
  using Overlaps = std::map<std::uint32_t, std::map<std::uint32_t, std::uint64_t>>;

  Component(const Overlaps& overlaps, const std::map<std::uint32_t, std::vector<std::uint32_t>>& reverse,
            std::uint32_t start)
      : overlaps_(overlaps) {
    std::vector<std::uint32_t> open{start};
    references_.insert(start);
    while (!open.empty()) {
      const std::uint32_t reference = open.back();
      open.pop_back();
      for (const auto& entry : overlaps.at(reference)) {
        compared_.insert(entry.first);
        for (const std::uint32_t other : reverse.at(entry.first)) {
          if (references_.insert(other).second) {
            open.push_back(other);
          }
        }
      }
    }
  }

  const std::set<std::uint32_t>& references() const { return references_; }

  /** The greatest sum of frames under a one-to-one mapping. */
  std::uint64_t bestSum() const {
    GainMatrix gains;
    for (const std::uint32_t reference : references_) {
      auto& row = gains.emplace_back();
      const auto& entries = overlaps_.at(reference);
      for (const std::uint32_t compared : compared_) {
        const auto found = entries.find(compared);
        row.push_back(found == entries.end() ? 0 : static_cast<double>(found->second));
      }
    }
    double sum = 0;
    for (const auto& [row, column] : bestAssignment(gains)) {
      sum += gains[row][column];
    }
    return static_cast<std::uint64_t>(sum + 0.5);
  }

 private:
  const Overlaps& overlaps_;
  std::set<std::uint32_t> references_;
  std::set<std::uint32_t> compared_;
};

}  // namespace

double overlap(const Box& left, const Box& right) {
  const Box common{std::max(left.left, right.left), std::max(left.top, right.top), std::min(left.right, right.right),
                   std::min(left.bottom, right.bottom)};
  const double intersection = area(common);
  const double total = area(left) + area(right) - intersection;
  if (total > 0) {
    return intersection / total;
  }
  const bool areEqual =
      left.left == right.left && left.top == right.top && left.right == right.right && left.bottom == right.bottom;
  return areEqual ? 1 : 0;
}

TrackingFigures& TrackingFigures::operator+=(const TrackingFigures& other) {
  reference += other.reference;
  compared += other.compared;
  referenceObjects += other.referenceObjects;
  comparedObjects += other.comparedObjects;
  matched += other.matched;
  missed += other.missed;
  added += other.added;
  identitySwitches += other.identitySwitches;
  identityMatches += other.identityMatches;
  return *this;
}

std::optional<double> TrackingFigures::mota() const {
  const auto errors = static_cast<double>(missed + added + identitySwitches);
  return reference > 0 ? std::optional(1 - errors / static_cast<double>(reference)) : std::nullopt;
}

std::optional<double> TrackingFigures::idf1() const {
  const std::uint64_t all = reference + compared;
  return all > 0 ? std::optional(2 * static_cast<double>(identityMatches) / static_cast<double>(all)) : std::nullopt;
}

void ClassComparison::addFrame(const std::vector<SeenObject>& reference, const std::vector<SeenObject>& compared) {
  for (const SeenObject& object : reference) {
    referenceIds_.insert(object.id);
  }
  for (const SeenObject& object : compared) {
    comparedIds_.insert(object.id);
  }
  noteOverlaps(reference, compared);
  const std::vector<Pair> pairs = match(reference, compared);
  previous_.clear();
  for (const auto& [row, column] : pairs) {
    const std::uint32_t id = reference[row].id;
    const std::uint32_t other = compared[column].id;
    const auto last = lastMatch_.find(id);
    figures_.identitySwitches += last != lastMatch_.end() && last->second != other ? 1U : 0U;
    lastMatch_[id] = other;
    previous_[id] = other;
  }
  figures_.reference += reference.size();
  figures_.compared += compared.size();
  figures_.matched += pairs.size();
  figures_.missed += reference.size() - pairs.size();
  figures_.added += compared.size() - pairs.size();
}

std::vector<ClassComparison::Pair> ClassComparison::match(const std::vector<SeenObject>& reference,
                                                          const std::vector<SeenObject>& compared) const {
  std::vector<Pair> pairs;
  std::set<std::size_t> takenColumns;
  std::set<std::size_t> takenRows;
  for (std::size_t row = 0; row < reference.size(); ++row) {
    const auto before = previous_.find(reference[row].id);
    for (std::size_t column = 0; before != previous_.end() && column < compared.size(); ++column) {
      if (compared[column].id == before->second && takenColumns.count(column) == 0 && takenRows.count(row) == 0 &&
          overlap(reference[row].box, compared[column].box) >= threshold_) {
        pairs.emplace_back(row, column);
        takenRows.insert(row);
        takenColumns.insert(column);
      }
    }
  }
  // More than all overlaps together: first as many pairs as possible, then those that overlap most.
  const double more = static_cast<double>(reference.size()) + 1;
  GainMatrix gains(reference.size(), std::vector<double>(compared.size()));
  for (std::size_t row = 0; row < reference.size(); ++row) {
    for (std::size_t column = 0; column < compared.size(); ++column) {
      const double common = overlap(reference[row].box, compared[column].box);
      const bool isFree = takenRows.count(row) == 0 && takenColumns.count(column) == 0;
      gains[row][column] = isFree && common >= threshold_ ? more + common : 0;
    }
  }
  const std::vector<Pair> others = bestAssignment(gains);
  pairs.insert(pairs.end(), others.begin(), others.end());
  return pairs;
}

void ClassComparison::noteOverlaps(const std::vector<SeenObject>& reference, const std::vector<SeenObject>& compared) {
  for (const SeenObject& left : reference) {
    for (const SeenObject& right : compared) {
      if (overlap(left.box, right.box) >= threshold_) {
        ++overlaps_[left.id][right.id];
      }
    }
  }
}

TrackingFigures ClassComparison::figures() const {
  TrackingFigures figures = figures_;
  figures.referenceObjects = referenceIds_.size();
  figures.comparedObjects = comparedIds_.size();
  figures.identityMatches = identityMatches();
  return figures;
}

std::uint64_t ClassComparison::identityMatches() const {
  std::map<std::uint32_t, std::vector<std::uint32_t>> reverse;
  for (const auto& [reference, entries] : overlaps_) {
    for (const auto& entry : entries) {
      reverse[entry.first].push_back(reference);
    }
  }
  std::set<std::uint32_t> done;
  std::uint64_t sum = 0;
  for (const auto& entry : overlaps_) {
    if (done.count(entry.first) == 0) {
      const Component component(overlaps_, reverse, entry.first);
      done.insert(component.references().begin(), component.references().end());
      sum += component.bestSum();
    }
  }
  return sum;
}

}  // namespace tarn::command
