// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "recordings/comparison.h"

#include "base/stop_signal.h"
#include "recordings/detector.h"
#include "recordings/scan_progress.h"

#include <recording/checked_reader.h>

#include <cmath>
#include <optional>
#include <set>
#include <utility>
#include <variant>
#include <vector>

namespace tarn::command {
namespace {

using ObjectsByClass = std::map<std::string, std::vector<SeenObject>>;

/** The objects of a recording, frame by frame. */
class FrameSource {
 public:
  FrameSource(const std::filesystem::path& folder, const BoxConvention& boxes, DamageList& damage,
              ScanProgress& progress)
      : reader_(folder),
        names_(vod::recording::readDetectorInformation(folder)),
        boxes_(boxes),
        damage_(damage),
        progress_(progress) {
    advance();
  }

  bool isAtEnd() const { return isAtEnd_; }
  double seconds() const { return clock_.seconds(); }
  const ObjectsByClass& objects() const { return objects_; }

  void advance() {
    while (!isAtEnd_) {
      throwIfStopRequested();
      auto next = reader_.next();
      if (const auto* const recorded = std::get_if<vod::recording::CheckedScene>(&next)) {
        progress_.show(recorded->bytes.size());
        if (take(*recorded)) {
          return;
        }
      } else if (auto* const damage = std::get_if<vod::recording::Damage>(&next)) {
        damage_.add(std::move(*damage));
      } else {
        isAtEnd_ = true;
      }
    }
  }

 private:
  bool take(const vod::recording::CheckedScene& recorded) {
    if (!scene_.ParseFromString(recorded.bytes)) {
      damage_.add({reader_.fileOf(recorded.part), recorded.offset, "not a serialized VOD.Scene"});
      return false;
    }
    clock_.advanceTo(scene_.timestamp());
    objects_.clear();
    for (const auto& detection : scene_.detections()) {
      objects_[names_.className(detection.class_id())].push_back(
          {detection.object_id(),
           boxes_.toPicture({detection.coord_1(), detection.coord_2(), detection.coord_3(), detection.coord_4()})});
    }
    return true;
  }

  vod::recording::CheckedReader reader_;
  const SceneNames names_;
  const BoxConvention boxes_;
  DamageList& damage_;
  ScanProgress& progress_;
  RecordingClock clock_;
  ::VOD::Scene scene_;
  ObjectsByClass objects_;
  bool isAtEnd_ = false;
};

/** Adds up what differs, class by class. */
class Comparer {
 public:
  explicit Comparer(double threshold) : threshold_(threshold) {}

  void addFrame(const ObjectsByClass& reference, const ObjectsByClass& compared) {
    std::set<std::string> names;
    for (const auto* const side : {&reference, &compared}) {
      for (const auto& entry : *side) {
        names.insert(entry.first);
        classes_.try_emplace(entry.first, threshold_);
      }
    }
    // A class without an object in this frame ends its matches too.
    for (auto& [name, comparison] : classes_) {
      comparison.addFrame(objectsOf(reference, name), objectsOf(compared, name));
    }
  }

  std::map<std::string, TrackingFigures> figures() const {
    std::map<std::string, TrackingFigures> figures;
    for (const auto& [name, comparison] : classes_) {
      figures.emplace(name, comparison.figures());
    }
    return figures;
  }

 private:
  static std::vector<SeenObject> objectsOf(const ObjectsByClass& objects, const std::string& name) {
    const auto found = objects.find(name);
    return found != objects.end() ? found->second : std::vector<SeenObject>();
  }

  const double threshold_;
  std::map<std::string, ClassComparison> classes_;
};

}  // namespace

TrackingFigures Comparison::total() const {
  TrackingFigures total;
  for (const auto& entry : classes) {
    total += entry.second;
  }
  return total;
}

Comparison compareRecordings(const std::filesystem::path& reference, const std::filesystem::path& compared,
                             const ComparisonOptions& options) {
  Comparison comparison;
  ScanProgress progress({reference, compared});
  FrameSource left(reference, options.boxes, comparison.damage, progress);
  FrameSource right(compared, options.boxes, comparison.damage, progress);
  Comparer comparer(options.threshold);
  while (!left.isAtEnd() || !right.isAtEnd()) {
    const double distance = left.seconds() - right.seconds();
    const bool leftIsAlone = right.isAtEnd() || (!left.isAtEnd() && distance < -options.tolerance);
    const bool rightIsAlone = left.isAtEnd() || (!right.isAtEnd() && distance > options.tolerance);
    if (leftIsAlone) {
      ++comparison.referenceFrames;
      comparer.addFrame(left.objects(), {});
      left.advance();
    } else if (rightIsAlone) {
      ++comparison.comparedFrames;
      comparer.addFrame({}, right.objects());
      right.advance();
    } else {
      ++comparison.frames;
      comparer.addFrame(left.objects(), right.objects());
      left.advance();
      right.advance();
    }
  }
  comparison.classes = comparer.figures();
  return comparison;
}

}  // namespace tarn::command
