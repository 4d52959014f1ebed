// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "other_formats.h"

#include <simdjson.h>

#include <utility>

namespace tarn::VOD::bench {
namespace {

// The fields are read in the order in which they were written, which is what this parser is fastest at.
using simdjson::ondemand::object;

std::uint32_t number(object& item, std::string_view field) {
  return static_cast<std::uint32_t>(item.find_field(field).get_uint64().value());
}

float coordinate(object& item, std::string_view field) {
  return static_cast<float>(item.find_field(field).get_double().value());
}

std::vector<Attribute> convertAttributes(object& detection, const SceneNames& names) {
  std::vector<Attribute> attributes;
  for (object item : detection.find_field("attributes").get_array()) {
    const std::uint32_t type = number(item, "type");
    const AttributeNames::Found found = names.attributes->find(AttributeClassId{type, number(item, "class")});
    if (found.type != nullptr) {
      attributes.emplace_back(*found.type, copyName(found.value), number(item, "score"));
    }
  }
  return attributes;
}

std::vector<Classification> convertClassifications(object& detection, const SceneNames& names) {
  std::vector<Classification> classifications;
  for (object item : detection.find_field("classifications").get_array()) {
    if (const std::string* const name = names.classes->find(static_cast<std::int32_t>(number(item, "class")))) {
      classifications.emplace_back(*name, number(item, "score"));
    }
  }
  return classifications;
}

void addDetection(std::vector<Data>& detections, object& item, const SceneNames& names) {
  const float coordinates[] = {coordinate(item, "coord_1"), coordinate(item, "coord_2"), coordinate(item, "coord_3"),
                               coordinate(item, "coord_4")};
  const std::uint32_t objectId = number(item, "object_id");
  const std::string* const className = names.classes->find(static_cast<std::int32_t>(number(item, "class_id")));
  if (className == nullptr) {
    return;
  }
  const std::uint32_t score = number(item, "score");
  const auto status = static_cast<DetectionStatus>(number(item, "status"));
  std::vector<Attribute> attributes = convertAttributes(item, names);
  std::vector<Classification> classifications = convertClassifications(item, names);
  detections.emplace_back(coordinates[0], coordinates[1], coordinates[2], coordinates[3], objectId, *className, score,
                          status, std::move(attributes), std::move(classifications));
}

void addEvent(std::vector<VodEvent>& events, object& item) {
  const auto action = static_cast<EventAction>(number(item, "action"));
  const int objectId = static_cast<int>(item.find_field("object_id").get_int64().value());
  std::vector<int> objectIds;
  for (const std::int64_t id : item.find_field("object_ids").get_array()) {
    objectIds.push_back(static_cast<int>(id));
  }
  events.emplace_back(action, objectId, std::move(objectIds));
}

std::unique_ptr<DetectionData> convert(simdjson::ondemand::document& scene, const SceneNames& names) {
  const std::uint64_t timestamp = scene.find_field("timestamp").get_uint64();
  std::vector<Data> detections;
  for (object item : scene.find_field("detections").get_array()) {
    addDetection(detections, item, names);
  }
  std::vector<VodEvent> events;
  for (object item : scene.find_field("events").get_array()) {
    addEvent(events, item);
  }
  return std::make_unique<DetectionData>(timestamp, std::move(detections), std::move(events));
}

}  // namespace

ProcessFrame simdjsonPipeline(const Sample& sample) {
  const auto parser = std::make_shared<simdjson::ondemand::parser>();
  const auto paddedText = [](const ::VOD::Scene& scene) {
    return std::make_shared<const simdjson::padded_string>(jsonOf(scene));
  };
  return [parser, texts = ofEachScene(sample, paddedText), names = namesOf(sample.detector)]() mutable {
    simdjson::ondemand::document document = parser->iterate(*texts.next());
    deliver(convert(document, names));
  };
}

}  // namespace tarn::VOD::bench
