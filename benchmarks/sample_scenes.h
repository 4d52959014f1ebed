// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#ifndef TARNVOD_BENCHMARKS_SAMPLE_SCENES_H
#define TARNVOD_BENCHMARKS_SAMPLE_SCENES_H

#include <tarnvod/video_object_detection.pb.h>

#include <set>
#include <string>

namespace tarn::VOD::bench {

/** Classes in the sample detector: the eight that the sample scenes show, and others up to this number. */
constexpr int detectorClasses = 80;

/** Whether the names of attribute types fit into a string object itself (15 characters) or take an allocation each. */
enum class TypeNames { Short, Long };

/**
 * A detector of a street: eight classes, six attribute types with their values, and further classes. All names are as
 * one would choose them: up to 14 characters, one value is longer. Not so the long type names.
 */
::VOD::DetectorInformation sampleDetector(TypeNames typeNames = TypeNames::Short);

/** The names of so many of a detector's classes, the first ones, or of all when it has fewer. */
std::set<std::string> firstClasses(const ::VOD::DetectorInformation& detector, int count = detectorClasses);

/**
 * A frame with so many detections, each with three scored attributes and two scored classifications; each second one is
 * a person, the others are vehicles. One event for every six detections, at least two of them.
 */
::VOD::Scene sampleScene(int detections);

/** Adds what no application gets to see: for each detection an outline of this many points. */
void addOutlines(::VOD::Scene& scene, int points);

}  // namespace tarn::VOD::bench

#endif
