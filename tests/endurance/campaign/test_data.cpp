// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "endurance/campaign/test_data.h"

#include "support/detector_builder.h"
#include "support/scene_builder.h"

#include <tarnvod/video_object_detection.pb.h>

namespace tarn::test {
namespace {

constexpr std::uint32_t ids = 6;  // of classes, attribute types and values: few, so that scenes meet them

std::string nameOf(const std::string& what, int camera, std::uint32_t number) {
  return what + ' ' + std::to_string(number) + " of camera " + std::to_string(camera);
}

void addAttribute(::VOD::DetectorInformation& information, std::uint32_t id, int camera, std::uint32_t values) {
  ::VOD::AttributeType& type = addAttributeType(information, id, nameOf("type", camera, id));
  for (std::uint32_t value = 0; value < values; ++value) {
    addAttributeValue(type, value, nameOf("value", camera, value));
  }
}

::VOD::DetectorInformation anySoundDetector(const Choose& choose, int camera) {
  ::VOD::DetectorInformation information;
  const bool spelledOtherwise = choose(4) == 0;
  for (std::uint32_t left = choose(5); left > 0; --left) {
    const std::uint32_t number = choose(ids);
    addClass(information, choose(ids), nameOf(spelledOtherwise ? "THING" : "thing", camera, number));
  }
  for (std::uint32_t left = choose(4); left > 0; --left) {
    const std::uint32_t id = choose(ids);
    addAttribute(information, id, camera, choose(3));
  }
  return information;
}

std::string cutOff(const Choose& choose, std::string bytes) {
  bytes.resize(choose(static_cast<std::uint32_t>(bytes.size()) + 1));
  return bytes;
}

void addDetection(const Choose& choose, ::VOD::Scene& scene) {
  ::VOD::Detection& detection = *scene.add_detections();
  setBox(detection, 0.4F, 0.4F, 0.6F, 0.6F);
  detection.set_object_id(choose(100));
  detection.set_class_id(choose(ids));
  detection.set_score(choose(100));
  detection.set_status(static_cast<::VOD::Detection_DetectionStatus>(choose(4)));
  for (std::uint32_t left = choose(3); left > 0; --left) {
    ::VOD::Attribute& attribute = *detection.add_attributes();
    attribute.set_type(choose(ids));
    if (choose(3) != 0) {
      attribute.set_class_(choose(ids));
    }
    if (choose(3) != 0) {
      attribute.set_score(choose(100));
    }
  }
  for (std::uint32_t left = choose(3); left > 0; --left) {
    ::VOD::Classification& classification = *detection.add_classifications();
    classification.set_class_(choose(ids));
    if (choose(3) != 0) {
      classification.set_score(choose(100));
    }
  }
}

void addEvent(const Choose& choose, ::VOD::Scene& scene) {
  ::VOD::Event& event = *scene.add_events();
  event.set_action(static_cast<::VOD::EventAction>(choose(3)));
  event.set_object_id(static_cast<std::int32_t>(choose(100)) - 50);
  for (std::uint32_t left = choose(3); left > 0; --left) {
    event.add_object_ids(static_cast<std::int32_t>(choose(100)));
  }
}

}  // namespace

std::string plainDetector(int camera) {
  ::VOD::DetectorInformation information;
  for (std::uint32_t id = 0; id < ids; ++id) {
    addClass(information, id, nameOf("thing", camera, id));
    addAttribute(information, id, camera, ids);
  }
  return information.SerializeAsString();
}

std::string anyDetector(const Choose& choose, int camera) {
  switch (choose(8)) {
    case 0:
      return {};
    case 1:
      return cutOff(choose, anySoundDetector(choose, camera).SerializeAsString());
    case 2:
    case 3:
      return anySoundDetector(choose, camera).SerializeAsString();
    default:
      return plainDetector(camera);
  }
}

std::string anyScene(const Choose& choose) {
  ::VOD::Scene scene;
  scene.set_timestamp(choose(1000));
  for (std::uint32_t left = choose(4); left > 0; --left) {
    addDetection(choose, scene);
  }
  for (std::uint32_t left = choose(3); left > 0; --left) {
    addEvent(choose, scene);
  }
  const std::string bytes = scene.SerializeAsString();
  return choose(8) == 0 ? cutOff(choose, bytes) : bytes;
}

}  // namespace tarn::test
