// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include <tarnvod/detection_data.h>

#include <utility>

namespace tarn::VOD {

Attribute::Attribute(const std::string& typeName, std::optional<std::string> className,
                     std::optional<std::uint32_t> score)
    : typeName(typeName), className(std::move(className)), score(score) {}

Classification::Classification(std::optional<std::string> className, std::optional<std::uint32_t> score)
    : className(std::move(className)), score(score) {}

VodEvent::VodEvent(EventAction action, int objectId, std::vector<int> objectIds)
    : action(action), objectId(objectId), objectIds(std::move(objectIds)) {}

Data::Data(float coord1, float coord2, float coord3, float coord4, unsigned int objectId, const std::string& className,
           unsigned int score, DetectionStatus status, std::vector<Attribute> attributes,
           std::vector<Classification> classifications)
    : coord1(coord1),
      coord2(coord2),
      coord3(coord3),
      coord4(coord4),
      objectId(objectId),
      className(className),
      score(score),
      status(status),
      attributes(std::move(attributes)),
      classifications(std::move(classifications)) {}

DetectionData::DetectionData(std::uint64_t timestamp, std::vector<Data> detections, std::vector<VodEvent> events)
    : timestamp(timestamp), detections(std::move(detections)), events(std::move(events)) {}

}  // namespace tarn::VOD
