// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "recordings/scene_record.h"

#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace tarn::command {
namespace {

VOD::Attribute attributeOf(const ::VOD::Attribute& attribute, const SceneNames& names) {
  std::optional<std::string> value;
  std::optional<std::uint32_t> score;
  if (attribute.has_class_case() == ::VOD::Attribute::kClass) {
    value = names.attributeValue(attribute.type(), attribute.class_());
  }
  if (attribute.has_score_case() == ::VOD::Attribute::kScore) {
    score = attribute.score();
  }
  return {names.attributeName(attribute.type()), value, score};
}

VOD::Classification classificationOf(const ::VOD::Classification& classification, const SceneNames& names) {
  std::optional<std::string> name;
  std::optional<std::uint32_t> score;
  if (classification.has_class_case() == ::VOD::Classification::kClass) {
    name = names.className(classification.class_());
  }
  if (classification.has_score_case() == ::VOD::Classification::kScore) {
    score = classification.score();
  }
  return {name, score};
}

VOD::Data detectionOf(const ::VOD::Detection& detection, const SceneNames& names) {
  std::vector<VOD::Attribute> attributes;
  for (const auto& attribute : detection.attributes()) {
    attributes.push_back(attributeOf(attribute, names));
  }
  std::vector<VOD::Classification> classifications;
  for (const auto& classification : detection.classifications()) {
    classifications.push_back(classificationOf(classification, names));
  }
  return {detection.coord_1(),       detection.coord_2(),   detection.coord_3(),
          detection.coord_4(),       detection.object_id(), names.className(detection.class_id()),
          detection.score(),         statusOf(detection),   std::move(attributes),
          std::move(classifications)};
}

}  // namespace

std::uint64_t timestampOf(const std::string& scene) {
  ::VOD::Scene message;
  static_cast<void>(message.ParsePartialFromString(scene));
  return message.timestamp();
}

VOD::DetectionStatus statusOf(const ::VOD::Detection& detection) {
  switch (detection.status()) {
    case ::VOD::Detection::TRACKED_UNCONFIDENT:
      return VOD::DetectionStatus::TrackedUnconfident;
    case ::VOD::Detection::TRACKED_CONFIDENT:
      return VOD::DetectionStatus::TrackedConfident;
    default:
      return VOD::DetectionStatus::Untracked;
  }
}

std::vector<VOD::VodEvent> eventsOf(const ::VOD::Scene& scene) {
  std::vector<VOD::VodEvent> events;
  for (const auto& event : scene.events()) {
    if (event.action() == ::VOD::EVENT_DELETE || event.action() == ::VOD::EVENT_CONNECT) {
      events.emplace_back(static_cast<VOD::EventAction>(event.action()), event.object_id(),
                          std::vector<int>(event.object_ids().begin(), event.object_ids().end()));
    }
  }
  return events;
}

VOD::DetectionData recordOf(const ::VOD::Scene& scene, const SceneNames& names) {
  std::vector<VOD::Data> detections;
  for (const auto& detection : scene.detections()) {
    detections.push_back(detectionOf(detection, names));
  }
  return {scene.timestamp(), std::move(detections), eventsOf(scene)};
}

}  // namespace tarn::command
