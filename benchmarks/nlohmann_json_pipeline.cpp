// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "other_formats.h"

#include <nlohmann/json.hpp>

#include <utility>

namespace tarn::VOD::bench {
namespace {

using nlohmann::json;

Data convertDetection(const json& detection, const std::string& className, const SceneNames& names) {
  std::vector<Attribute> attributes;
  const json& attributeItems = detection.at("attributes");
  attributes.reserve(attributeItems.size());
  for (const json& item : attributeItems) {
    const AttributeClassId value{item.at("type").get<std::uint32_t>(), item.at("class").get<std::uint32_t>()};
    const AttributeNames::Found found = names.attributes->find(value);
    if (found.type != nullptr) {
      attributes.emplace_back(*found.type, copyName(found.value), item.at("score").get<std::uint32_t>());
    }
  }
  std::vector<Classification> classifications;
  const json& classificationItems = detection.at("classifications");
  classifications.reserve(classificationItems.size());
  for (const json& item : classificationItems) {
    if (const std::string* const name = names.classes->find(item.at("class").get<std::int32_t>())) {
      classifications.emplace_back(*name, item.at("score").get<std::uint32_t>());
    }
  }
  return {detection.at("coord_1").get<float>(),
          detection.at("coord_2").get<float>(),
          detection.at("coord_3").get<float>(),
          detection.at("coord_4").get<float>(),
          detection.at("object_id").get<std::uint32_t>(),
          className,
          detection.at("score").get<std::uint32_t>(),
          static_cast<DetectionStatus>(detection.at("status").get<int>()),
          std::move(attributes),
          std::move(classifications)};
}

std::unique_ptr<DetectionData> convert(const json& scene, const SceneNames& names) {
  std::vector<Data> detections;
  detections.reserve(scene.at("detections").size());
  for (const json& item : scene.at("detections")) {
    if (const std::string* const className = names.classes->find(item.at("class_id").get<std::int32_t>())) {
      detections.push_back(convertDetection(item, *className, names));
    }
  }
  std::vector<VodEvent> events;
  events.reserve(scene.at("events").size());
  for (const json& item : scene.at("events")) {
    events.emplace_back(static_cast<EventAction>(item.at("action").get<int>()), item.at("object_id").get<int>(),
                        item.at("object_ids").get<std::vector<int>>());
  }
  return std::make_unique<DetectionData>(scene.at("timestamp").get<std::uint64_t>(), std::move(detections),
                                         std::move(events));
}

}  // namespace

ProcessFrame nlohmannJsonPipeline(const Sample& sample) {
  return [texts = ofEachScene(sample, jsonOf), names = namesOf(sample.detector)]() mutable {
    deliver(convert(json::parse(texts.next()), names));
  };
}

}  // namespace tarn::VOD::bench
