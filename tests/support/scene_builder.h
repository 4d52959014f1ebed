// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#ifndef TARNVOD_TESTS_SUPPORT_SCENE_BUILDER_H
#define TARNVOD_TESTS_SUPPORT_SCENE_BUILDER_H

#include <tarnvod/video_object_detection.pb.h>

#include <initializer_list>
#include <optional>

namespace tarn::test {

/** Adds a detection of a class and returns it, to be filled further. */
inline ::VOD::Detection& addDetection(::VOD::Scene& scene, std::uint32_t classId) {
  ::VOD::Detection& detection = *scene.add_detections();
  detection.set_class_id(classId);
  return detection;
}

/** Sets a detection's box: left, top, right and bottom. */
inline void setBox(::VOD::Detection& detection, float coord1, float coord2, float coord3, float coord4) {
  detection.set_coord_1(coord1);
  detection.set_coord_2(coord2);
  detection.set_coord_3(coord3);
  detection.set_coord_4(coord4);
}

/** Adds an attribute, without the members that are not given. */
inline void addAttribute(::VOD::Detection& detection, std::uint32_t type, std::optional<std::uint32_t> value = {},
                         std::optional<std::uint32_t> score = {}) {
  ::VOD::Attribute& attribute = *detection.add_attributes();
  attribute.set_type(type);
  if (value) {
    attribute.set_class_(*value);
  }
  if (score) {
    attribute.set_score(*score);
  }
}

/** Adds a classification, without the members that are not given. */
inline void addClassification(::VOD::Detection& detection, std::optional<std::uint32_t> classId,
                              std::optional<std::uint32_t> score = {}) {
  ::VOD::Classification& classification = *detection.add_classifications();
  if (classId) {
    classification.set_class_(*classId);
  }
  if (score) {
    classification.set_score(*score);
  }
}

/** Adds an event. */
inline void addEvent(::VOD::Scene& scene, ::VOD::EventAction action, std::int32_t objectId,
                     std::initializer_list<std::int32_t> objectIds) {
  ::VOD::Event& event = *scene.add_events();
  event.set_action(action);
  event.set_object_id(objectId);
  for (const std::int32_t id : objectIds) {
    event.add_object_ids(id);
  }
}

}  // namespace tarn::test

#endif
