// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#ifndef TARNVOD_BENCHMARKS_ROADS_H
#define TARNVOD_BENCHMARKS_ROADS_H

#include "detection-data/scene_names.h"

#include <tarnvod/video_object_detection.pb.h>

#include <cstddef>
#include <functional>
#include <string>
#include <utility>
#include <vector>

namespace tarn::VOD::bench {

/** Scenes to be measured in turn, and the detector that names what is in them. */
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

/** Gives one item after the other, after the last the first again. */
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

/** What a function makes of each scene of a sample. */
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

/** Does once, each time that it is called, what a road does with a frame. */
using Walk = std::function<void()>;

/** One way from a frame's bytes to the application, or a part of one. */
struct Road {
  std::string name;
  std::function<Walk(const Sample&)> prepare;
};

/** This library's: the whole road, the parse alone, the conversion alone, copying the bytes. */
std::vector<Road> libraryRoads();

/** What there would be instead: the same frame in other formats, into the same records. Those that were found. */
std::vector<Road> otherRoads();

/** Both. */
std::vector<Road> allRoads();

/** All of them, and the whole road through a `Camera`, whose thread makes times vary more than it costs. */
std::vector<Road> countedRoads();

/** The whole road of a camera that is set up again, with this number of the detector's classes requested. */
Walk wholeRoad(const Sample& sample, int camera, int classes);

}  // namespace tarn::VOD::bench

#endif
