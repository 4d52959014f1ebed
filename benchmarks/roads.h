// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#ifndef TARNVOD_BENCHMARKS_ROADS_H
#define TARNVOD_BENCHMARKS_ROADS_H

#include "detection-data/scene_names.h"

#include <tarnvod/video_object_detection.pb.h>

#include <functional>
#include <string>
#include <vector>

namespace tarn::VOD::bench {

/** A scene to be measured, and the detector that names what is in it. */
struct Sample {
  std::string name;
  ::VOD::Scene scene;
  ::VOD::DetectorInformation detector;
};

/** The samples: scenes of 3, 12 and 100 detections, with outlines, with long names, and an empty one. */
std::vector<Sample> samples();

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

/** The whole road of a camera that is set up anew, with so many of the detector's classes requested. */
Walk wholeRoad(const Sample& sample, int camera, int classes);

}  // namespace tarn::VOD::bench

#endif
