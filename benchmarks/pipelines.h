// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#ifndef TARNVOD_BENCHMARKS_PIPELINES_H
#define TARNVOD_BENCHMARKS_PIPELINES_H

#include "detection-data/scene_names.h"

#include <tarnvod/detection_data.h>
#include <tarnvod/video_object_detection.pb.h>

#include <cstddef>
#include <functional>
#include <string>
#include <utility>
#include <vector>

namespace tarn::VOD::bench {

/** Scenes to be measured in turn, and the detector that names their contents. */
struct Sample {
  std::string name;
  std::vector<::VOD::Scene> scenes;
  ::VOD::DetectorInformation detector;
};

/**
 * The samples: scenes of 3, 12 and 100 detections, with outlines, with long names, an empty one, and forty scenes of a
 * street, two seconds apart.
 */
std::vector<Sample> samples();

/** Returns its items in turn; the first follows the last. */
template <typename Item>
class Cycle {
 public:
  explicit Cycle(std::vector<Item> items) : items_(std::move(items)) {}

  const Item& next() {
    const Item& item = items_[place_];
    place_ = place_ + 1 == items_.size() ? 0 : place_ + 1;
    return item;
  }

 private:
  std::vector<Item> items_;
  std::size_t place_ = 0;
};

/** The results of a function for each scene of a sample. */
template <typename Make>
auto ofEachScene(const Sample& sample, const Make& make) {
  std::vector<std::decay_t<decltype(make(sample.scenes.front()))>> items;
  for (const ::VOD::Scene& scene : sample.scenes) {
    items.push_back(make(scene));
  }
  return Cycle(std::move(items));
}

/** The names of all classes and attributes that the detector knows. */
SceneNames namesOf(const ::VOD::DetectorInformation& detector);

/** The records of a sample's scenes. */
Cycle<DetectionData> recordsOf(const Sample& sample);

/** Passes the next frame of a sample through a pipeline. */
using ProcessFrame = std::function<void()>;

/** A way from a frame's bytes to the application, or a part of it. */
struct Pipeline {
  std::string name;
  std::function<ProcessFrame(const Sample&)> prepare;
};

/** The library's own: the whole pipeline, the parse alone, the conversion alone, a copy of the bytes, a copy of the record. */
std::vector<Pipeline> libraryPipelines();

/** The same frame in other formats, converted to the same records. Only formats whose library was found. */
std::vector<Pipeline> otherFormatPipelines();

/** The library's own and those of other formats. */
std::vector<Pipeline> allPipelines();

/** The text of the record on one line, as the command prints it; only where its libraries were found. */
ProcessFrame linePipeline(const Sample& sample);

/**
 * All of them, the text of a record, and the whole pipeline through a `Camera`, whose thread makes the times too irregular to
 * compare.
 */
std::vector<Pipeline> countedPipelines();

/** Sets the camera up again, requesting this number of the detector's classes. Returns its whole pipeline. */
ProcessFrame framePipeline(const Sample& sample, int camera, int classes);

}  // namespace tarn::VOD::bench

#endif
