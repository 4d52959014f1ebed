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

/** Makes room for all that may come, once, and only when the first record is kept. */
template <typename Records>
void reserveOnce(Records& records, int most) {
  if (records.empty()) {
    records.reserve(static_cast<std::size_t>(most));
  }
}

std::vector<VodEvent> convertEvents(const ::VOD::Scene& scene) {
  std::vector<VodEvent> events;
  for (const ::VOD::Event& event : scene.events()) {
    if (event.action() != ::VOD::EVENT_DELETE && event.action() != ::VOD::EVENT_CONNECT) {
      continue;
    }
    reserveOnce(events, scene.events_size());
    events.emplace_back(static_cast<EventAction>(event.action()), event.object_id(),
                        std::vector<int>(event.object_ids().begin(), event.object_ids().end()));
  }
  return events;
}

const std::string* findValueName(const ::VOD::Attribute& attribute, const SceneNames& names) {
  return attribute.has_class_case() == ::VOD::Attribute::kClass
             ? findName(names.attributeClasses, AttributeClassId{attribute.type(), attribute.class_()})
             : nullptr;
}

std::optional<std::uint32_t> scoreOf(const ::VOD::Attribute& attribute) {
  return attribute.has_score_case() == ::VOD::Attribute::kScore ? std::optional<std::uint32_t>(attribute.score())
                                                                : std::nullopt;
}

void convertAttributes(const ::VOD::Detection& detection, const SceneNames& names,
                       MissingAttributeType missingAttributeType, std::vector<Attribute>& attributes) {
  for (const ::VOD::Attribute& attribute : detection.attributes()) {
    const std::string* const typeName = findName(names.attributeTypes, attribute.type());
    if (typeName == nullptr) {
      missingAttributeType(attribute.type());
      continue;
    }
    reserveOnce(attributes, detection.attributes_size());
    Attribute& record = attributes.emplace_back(*typeName, std::nullopt, scoreOf(attribute));
    if (const std::string* const valueName = findValueName(attribute, names)) {
      record.className = *valueName;
    }
  }
}

void convertClassifications(const ::VOD::Detection& detection, const SceneNames& names,
                            std::vector<Classification>& classifications) {
  for (const ::VOD::Classification& classification : detection.classifications()) {
    if (classification.has_class_case() == ::VOD::Classification::HAS_CLASS_NOT_SET ||
        classification.has_score_case() == ::VOD::Classification::HAS_SCORE_NOT_SET) {
      continue;
    }
    const std::string* const className = findName(names.classes, static_cast<std::int32_t>(classification.class_()));
    if (className == nullptr) {
      continue;
    }
    reserveOnce(classifications, detection.classifications_size());
    classifications.emplace_back(std::nullopt, classification.score()).className = *className;
  }
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
  for (const ::VOD::Detection& detection : scene.detections()) {
    const std::string* const className = findName(names.classes, static_cast<std::int32_t>(detection.class_id()));
    if (className == nullptr) {
      continue;
    }
    reserveOnce(detections, scene.detections_size());
    Data& record =
        detections.emplace_back(detection.coord_1(), detection.coord_2(), detection.coord_3(), detection.coord_4(),
                                detection.object_id(), *className, detection.score(), convertStatus(detection.status()),
                                std::vector<Attribute>(), std::vector<Classification>());
    convertAttributes(detection, names, missingAttributeType, record.attributes);
    convertClassifications(detection, names, record.classifications);
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
