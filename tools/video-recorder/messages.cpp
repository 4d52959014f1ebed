// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "video-recorder/messages.h"

namespace recorder {
namespace {

constexpr std::uint32_t human = 1;
constexpr std::uint32_t upperClothingColour = 1;
constexpr std::uint32_t lowerClothingColour = 2;

// An id of 0 would read as an absent one in some places, so colours count from 1.
std::uint32_t idOf(Colour colour) {
  return static_cast<std::uint32_t>(colour) + 1;
}

void addColourAttribute(VOD::DetectorInformation& information, std::uint32_t id, const char* name) {
  VOD::AttributeType& type = *information.add_attribute_types();
  type.set_id(id);
  type.set_name(name);
  for (Colour colour = 0; colour < colourNames.size(); ++colour) {
    VOD::AttributeClass& value = *type.add_attribute_classes();
    value.set_id(idOf(colour));
    value.set_name(colourNames[colour]);
  }
}

void addHumanClass(VOD::DetectorInformation& information) {
  VOD::ObjectClass& object = *information.add_object_classes();
  object.set_id(human);
  object.set_name("human");
  object.add_attribute_type_ids(upperClothingColour);
  object.add_attribute_type_ids(lowerClothingColour);
  // score = c / (1 + exp(a * margin + b)), see scoreOf.
  VOD::Calibration& calibration = *object.add_calibrations();
  calibration.set_coefficient_a(-scoreSteepness);
  calibration.set_coefficient_b(scoreSteepness * evenMargin);
  calibration.set_coefficient_c(100);
}

void addColour(VOD::Detection& detection, std::uint32_t type, const ColourShares& shares) {
  if (shares.isEmpty()) {
    return;
  }
  VOD::Attribute& attribute = *detection.add_attributes();
  attribute.set_type(type);
  attribute.set_class_(idOf(shares.best()));
  attribute.set_score(shares.bestScore());
}

void addDetection(VOD::Scene& scene, const Person& person, const Wardrobe& wardrobe) {
  VOD::Detection& detection = *scene.add_detections();
  detection.set_coord_1(person.box.left);
  detection.set_coord_2(person.box.top);
  detection.set_coord_3(person.box.right);
  detection.set_coord_4(person.box.bottom);
  detection.set_object_id(person.id);
  detection.set_class_id(human);
  detection.set_score(scoreOf(person.margin));
  detection.set_status(person.isConfirmed ? VOD::Detection::TRACKED_CONFIDENT : VOD::Detection::TRACKED_UNCONFIDENT);
  const auto clothing = wardrobe.find(person.id);
  if (clothing != wardrobe.end()) {
    addColour(detection, upperClothingColour, clothing->second.upper);
    addColour(detection, lowerClothingColour, clothing->second.lower);
  }
  VOD::Classification& classification = *detection.add_classifications();
  classification.set_class_(human);
  classification.set_score(scoreOf(person.margin));
}

void addEvent(VOD::Scene& scene, VOD::EventAction action, std::uint32_t id) {
  VOD::Event& event = *scene.add_events();
  event.set_action(action);
  event.set_object_id(static_cast<std::int32_t>(id));
}

}  // namespace

VOD::DetectorInformation describeDetector(int camera) {
  VOD::DetectorInformation information;
  addHumanClass(information);
  addColourAttribute(information, upperClothingColour, "upper_clothing_colour");
  addColourAttribute(information, lowerClothingColour, "lower_clothing_colour");
  VOD::DetectorProperties& properties = *information.mutable_properties();
  properties.set_camera_nbr(static_cast<std::uint32_t>(camera - 1));
  properties.set_image_rotation(0);
  // People who reappear are connected by where they were lost, not by how they look.
  properties.set_reid_status(VOD::REID_NOT_RUNNING);
  properties.set_inference_chip(VOD::CPU);
  return information;
}

VOD::Scene describeFrame(std::uint64_t timestamp, const TrackedFrame& frame, const Wardrobe& wardrobe) {
  VOD::Scene scene;
  scene.set_timestamp(timestamp);
  for (const Person& person : frame.people) {
    addDetection(scene, person, wardrobe);
  }
  for (const Reappearance& reappearance : frame.reappeared) {
    addEvent(scene, VOD::EVENT_CONNECT, reappearance.id);
    scene.mutable_events()->rbegin()->add_object_ids(static_cast<std::int32_t>(reappearance.earlierId));
  }
  for (const std::uint32_t id : frame.gone) {
    addEvent(scene, VOD::EVENT_DELETE, id);
  }
  return scene;
}

}  // namespace recorder
