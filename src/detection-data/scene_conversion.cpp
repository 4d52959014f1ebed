// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "detection-data/scene_conversion.h"

#include <tarnvod/video_object_detection.pb.h>

#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace tarn::VOD {
namespace {

/** The name of an id in a table that may not be there; null when it has none. */
template <typename Table, typename Id>
const std::string* findName(const std::shared_ptr<const Table>& table, const Id& id) {
  return table ? table->find(id) : nullptr;
}

/** Makes room for all that may still come, once, and only if anything is kept at all. */
template <typename Records>
void reserveOnce(Records& records, int remaining) {
  if (records.capacity() == 0) {
    records.reserve(static_cast<std::size_t>(remaining));
  }
}

std::vector<VodEvent> convertEvents(const ::VOD::Scene& scene) {
  std::vector<VodEvent> events;
  for (int i = 0; i < scene.events_size(); ++i) {
    const ::VOD::Event& event = scene.events(i);
    if (event.action() != ::VOD::EVENT_DELETE && event.action() != ::VOD::EVENT_CONNECT) {
      continue;
    }
    reserveOnce(events, scene.events_size() - i);
    events.emplace_back(static_cast<EventAction>(event.action()), event.object_id(),
                        std::vector<int>(event.object_ids().begin(), event.object_ids().end()));
  }
  return events;
}

std::optional<std::string> valueName(const ::VOD::Attribute& attribute, const SceneNames& names) {
  if (attribute.has_class_case() == ::VOD::Attribute::HAS_CLASS_NOT_SET) {
    return std::nullopt;
  }
  const std::string* const name =
      findName(names.attributeClasses, AttributeClassId{attribute.type(), attribute.class_()});
  return name != nullptr ? std::optional<std::string>(*name) : std::nullopt;
}

std::optional<std::uint32_t> scoreOf(const ::VOD::Attribute& attribute) {
  return attribute.has_score_case() == ::VOD::Attribute::kScore ? std::optional<std::uint32_t>(attribute.score())
                                                                : std::nullopt;
}

std::vector<Attribute> convertAttributes(const ::VOD::Detection& detection, const SceneNames& names,
                                         MissingAttributeType missingAttributeType) {
  std::vector<Attribute> attributes;
  for (int i = 0; i < detection.attributes_size(); ++i) {
    const ::VOD::Attribute& attribute = detection.attributes(i);
    const std::string* const typeName = findName(names.attributeTypes, attribute.type());
    if (typeName == nullptr) {
      missingAttributeType(attribute.type());
      continue;
    }
    reserveOnce(attributes, detection.attributes_size() - i);
    attributes.emplace_back(*typeName, valueName(attribute, names), scoreOf(attribute));
  }
  return attributes;
}

std::vector<Classification> convertClassifications(const ::VOD::Detection& detection, const SceneNames& names) {
  std::vector<Classification> classifications;
  for (int i = 0; i < detection.classifications_size(); ++i) {
    const ::VOD::Classification& classification = detection.classifications(i);
    if (classification.has_class_case() == ::VOD::Classification::HAS_CLASS_NOT_SET ||
        classification.has_score_case() == ::VOD::Classification::HAS_SCORE_NOT_SET) {
      continue;
    }
    const std::string* const className = findName(names.classes, static_cast<std::int32_t>(classification.class_()));
    if (className == nullptr) {
      continue;
    }
    reserveOnce(classifications, detection.classifications_size() - i);
    classifications.emplace_back(*className, classification.score());
  }
  return classifications;
}

DetectionStatus convertStatus(::VOD::Detection_DetectionStatus status) {
  switch (status) {
    case ::VOD::Detection_DetectionStatus_TRACKED_UNCONFIDENT:
      return DetectionStatus::TrackedUnconfident;
    case ::VOD::Detection_DetectionStatus_TRACKED_CONFIDENT:
      return DetectionStatus::TrackedConfident;
    default:
      return DetectionStatus::Untracked;
  }
}

std::vector<Data> convertDetections(const ::VOD::Scene& scene, const SceneNames& names,
                                    MissingAttributeType missingAttributeType) {
  std::vector<Data> detections;
  for (int i = 0; i < scene.detections_size(); ++i) {
    const ::VOD::Detection& detection = scene.detections(i);
    const std::string* const className = findName(names.classes, static_cast<std::int32_t>(detection.class_id()));
    if (className == nullptr) {
      continue;
    }
    reserveOnce(detections, scene.detections_size() - i);
    detections.emplace_back(detection.coord_1(), detection.coord_2(), detection.coord_3(), detection.coord_4(),
                            detection.object_id(), *className, detection.score(), convertStatus(detection.status()),
                            convertAttributes(detection, names, missingAttributeType),
                            convertClassifications(detection, names));
  }
  return detections;
}

}  // namespace

std::unique_ptr<DetectionData> convertScene(const ::VOD::Scene& scene, const SceneNames& names,
                                            MissingAttributeType missingAttributeType) {
  std::vector<VodEvent> events = convertEvents(scene);
  std::vector<Data> detections = convertDetections(scene, names, missingAttributeType);
  return std::make_unique<DetectionData>(scene.timestamp(), std::move(detections), std::move(events));
}

}  // namespace tarn::VOD
