// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "sample_scenes.h"

#include <algorithm>
#include <vector>

namespace tarn::VOD::bench {
namespace {

struct AttributeTypeSample {
  const char* name;
  std::vector<const char*> values;
};

// Ids count from 1, in this order. The first three types describe people, the others vehicles.
const std::vector<const char*>& classSamples() {
  static const std::vector<const char*> samples{"human", "car",     "truck",      "bus",
                                                "face",  "bicycle", "motorcycle", "license_plate"};
  return samples;
}

const std::vector<AttributeTypeSample>& attributeSamples() {
  static const std::vector<AttributeTypeSample> samples{
      {"upper_clothing", {"black", "white", "gray", "red", "blue", "green", "yellow", "beige"}},
      {"lower_clothing", {"black", "white", "gray", "red", "blue", "green", "yellow", "beige"}},
      {"bag", {"none", "backpack", "suitcase", "shoulder_bag"}},
      {"vehicle_color", {"black", "white", "gray", "red", "blue", "green", "yellow", "beige"}},
      {"vehicle_type", {"sedan", "estate", "van", "light_goods_vehicle"}},
      {"direction", {"towards", "away", "left", "right"}}};
  return samples;
}

constexpr unsigned attributesPerDetection = 3;

void addAttributes(::VOD::Detection& detection, unsigned firstType, unsigned variation) {
  for (unsigned type = firstType; type < firstType + attributesPerDetection; ++type) {
    const auto values = static_cast<unsigned>(attributeSamples()[type - 1].values.size());
    ::VOD::Attribute& attribute = *detection.add_attributes();
    attribute.set_type(type);
    attribute.set_class_((variation + type) % values + 1);
    attribute.set_score(40 + (variation * 7 + type) % 60);
  }
}

void addClassification(::VOD::Detection& detection, unsigned classId, unsigned score) {
  ::VOD::Classification& classification = *detection.add_classifications();
  classification.set_class_(classId);
  classification.set_score(score);
}

void addDetection(::VOD::Scene& scene, unsigned number) {
  constexpr unsigned person = 1;
  constexpr unsigned firstVehicle = 2;
  const bool isPerson = number % 2 == 0;
  const unsigned classId = isPerson ? person : firstVehicle + number / 2 % 3;
  const auto offset = static_cast<float>(number % 40) * 0.02F;

  ::VOD::Detection& detection = *scene.add_detections();
  detection.set_coord_1(-0.9F + offset);
  detection.set_coord_2(-0.7F + offset);
  detection.set_coord_3(-0.8F + offset);
  detection.set_coord_4(-0.5F + offset);
  detection.set_object_id(1000 + number);
  detection.set_class_id(classId);
  detection.set_score(50 + number % 50);
  detection.set_status(::VOD::Detection_DetectionStatus_TRACKED_CONFIDENT);
  addAttributes(detection, isPerson ? 1 : 1 + attributesPerDetection, number);
  addClassification(detection, classId, 60 + number % 40);
  addClassification(detection, isPerson ? 5 : 6 + number / 2 % 3, 30 + number % 30);
}

void addEvent(::VOD::Scene& scene, int number) {
  ::VOD::Event& event = *scene.add_events();
  event.set_action(number % 2 == 0 ? ::VOD::EVENT_DELETE : ::VOD::EVENT_CONNECT);
  event.set_object_id(900 + number);
  if (event.action() == ::VOD::EVENT_CONNECT) {
    event.add_object_ids(800 + number);
    event.add_object_ids(700 + number);
  }
}

std::string className(int index) {
  const auto& samples = classSamples();
  const auto place = static_cast<std::size_t>(index);
  return place < samples.size() ? samples[place] : "further_class_" + std::to_string(index + 1);
}

}  // namespace

::VOD::DetectorInformation sampleDetector(TypeNames typeNames) {
  ::VOD::DetectorInformation detector;
  for (int index = 0; index < detectorClasses; ++index) {
    ::VOD::ObjectClass& objectClass = *detector.add_object_classes();
    objectClass.set_id(static_cast<unsigned>(index) + 1);
    objectClass.set_name(className(index));
    for (unsigned type = 1; index < 4 && type <= attributesPerDetection; ++type) {
      objectClass.add_attribute_type_ids(index == 0 ? type : type + attributesPerDetection);
    }
  }
  for (const AttributeTypeSample& sample : attributeSamples()) {
    ::VOD::AttributeType& type = *detector.add_attribute_types();
    type.set_id(static_cast<unsigned>(detector.attribute_types_size()));
    type.set_name(typeNames == TypeNames::Short ? sample.name : sample.name + std::string("_of_the_object"));
    for (const char* const value : sample.values) {
      ::VOD::AttributeClass& attributeClass = *type.add_attribute_classes();
      attributeClass.set_id(static_cast<unsigned>(type.attribute_classes_size()));
      attributeClass.set_name(value);
    }
  }
  detector.mutable_properties()->set_camera_nbr(0);
  return detector;
}

std::set<std::string> firstClasses(const ::VOD::DetectorInformation& detector, int count) {
  std::set<std::string> classes;
  for (int index = 0; index < std::min(count, detector.object_classes_size()); ++index) {
    classes.insert(detector.object_classes(index).name());
  }
  return classes;
}

::VOD::Scene sampleScene(int detections) {
  ::VOD::Scene scene;
  scene.set_timestamp(1'700'000'000'000'000);
  for (int number = 0; number < detections; ++number) {
    addDetection(scene, static_cast<unsigned>(number));
  }
  for (int number = 0; number < std::max(2, detections / 6); ++number) {
    addEvent(scene, number);
  }
  return scene;
}

void addOutlines(::VOD::Scene& scene, int points) {
  for (int number = 0; number < scene.detections_size(); ++number) {
    ::VOD::Segmentation& segmentation = *scene.add_segmentations();
    segmentation.set_segmentation_class_id(static_cast<unsigned>(number % 4) + 1);
    ::VOD::Polygon& outline = *segmentation.add_polygons();
    for (int index = 0; index < points; ++index) {
      ::VOD::Point& point = *outline.add_points();
      point.set_x(static_cast<float>(index) * 0.01F);
      point.set_y(static_cast<float>(points - index) * 0.01F);
    }
  }
}

}  // namespace tarn::VOD::bench
