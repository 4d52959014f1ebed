// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

// Sets cameras up and passes N frames to them in turn, all of one size, for tools that count what a program does. See count_frames.cpp.

#include "pipelines.h"
#include "sample_scenes.h"

#include <vod_host.h>

#include <cstddef>
#include <exception>
#include <iostream>
#include <string>
#include <vector>

namespace {

using namespace tarn::VOD::bench;

/** As many classes and attribute types, each type with one value. */
VOD::DetectorInformation detectorOf(unsigned classes, unsigned types) {
  VOD::DetectorInformation detector;
  for (unsigned id = 1; id <= classes; ++id) {
    VOD::ObjectClass& objectClass = *detector.add_object_classes();
    objectClass.set_id(id);
    objectClass.set_name("class_" + std::to_string(id));
    objectClass.add_attribute_type_ids(id % types + 1);
  }
  for (unsigned id = 1; id <= types; ++id) {
    VOD::AttributeType& type = *detector.add_attribute_types();
    type.set_id(id);
    type.set_name("type_" + std::to_string(id));
    VOD::AttributeClass& value = *type.add_attribute_classes();
    value.set_id(1);
    value.set_name("value");
  }
  return detector;
}

/** The sample scene with objects and attributes of all of them. */
VOD::Scene sceneOf(int detections, unsigned classes, unsigned types) {
  VOD::Scene scene = sampleScene(detections);
  unsigned number = 0;
  for (VOD::Detection& detection : *scene.mutable_detections()) {
    detection.set_class_id(number % classes + 1);
    for (VOD::Classification& classification : *detection.mutable_classifications()) {
      classification.set_class_(++number % classes + 1);
    }
    for (VOD::Attribute& attribute : *detection.mutable_attributes()) {
      attribute.set_type(++number % types + 1);
      attribute.set_class_(1);
    }
  }
  return scene;
}

void run(int cameras, int detections, int classes, int types, int frames) {
  const auto classCount = static_cast<unsigned>(classes);
  const auto typeCount = static_cast<unsigned>(types);
  const Sample sample{"", {sceneOf(detections, classCount, typeCount)}, detectorOf(classCount, typeCount)};
  std::vector<ProcessFrame> deliver;
  for (int camera = 1; camera <= cameras; ++camera) {
    deliver.push_back(framePipeline(sample, camera, classes));
  }
  for (int frame = 0; frame < frames; ++frame) {
    deliver[static_cast<std::size_t>(frame % cameras)]();
  }
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 6) {
    std::cerr << "usage: " << argv[0] << " CAMERAS DETECTIONS CLASSES TYPES FRAMES\n";
    return 2;
  }
  try {
    vod::host::reset();
    vod::host::recordCalls(false);
    run(std::stoi(argv[1]), std::stoi(argv[2]), std::stoi(argv[3]), std::stoi(argv[4]), std::stoi(argv[5]));
  } catch (const std::exception& failure) {
    std::cerr << argv[0] << ": " << failure.what() << '\n';
    return 1;
  }
  return 0;
}
