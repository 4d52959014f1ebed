// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "other_formats.h"

#include <rapidjson/document.h>

#include <stdexcept>
#include <utility>

namespace tarn::VOD::bench {
namespace {

using rapidjson::Value;

std::vector<Attribute> convertAttributes(const Value& items, const SceneNames& names) {
  std::vector<Attribute> attributes;
  attributes.reserve(items.Size());
  for (const Value& item : items.GetArray()) {
    const AttributeClassId value{item["type"].GetUint(), item["class"].GetUint()};
    const AttributeNames::Found found = names.attributes->find(value);
    if (found.type != nullptr) {
      attributes.emplace_back(*found.type, copyName(found.value), item["score"].GetUint());
    }
  }
  return attributes;
}

std::vector<Classification> convertClassifications(const Value& items, const SceneNames& names) {
  std::vector<Classification> classifications;
  classifications.reserve(items.Size());
  for (const Value& item : items.GetArray()) {
    if (const std::string* const name = names.classes->find(item["class"].GetInt())) {
      classifications.emplace_back(*name, item["score"].GetUint());
    }
  }
  return classifications;
}

std::vector<Data> convertDetections(const Value& items, const SceneNames& names) {
  std::vector<Data> detections;
  detections.reserve(items.Size());
  for (const Value& item : items.GetArray()) {
    if (const std::string* const className = names.classes->find(item["class_id"].GetInt())) {
      detections.emplace_back(item["coord_1"].GetFloat(), item["coord_2"].GetFloat(), item["coord_3"].GetFloat(),
                              item["coord_4"].GetFloat(), item["object_id"].GetUint(), *className,
                              item["score"].GetUint(), static_cast<DetectionStatus>(item["status"].GetInt()),
                              convertAttributes(item["attributes"], names),
                              convertClassifications(item["classifications"], names));
    }
  }
  return detections;
}

std::vector<VodEvent> convertEvents(const Value& items) {
  std::vector<VodEvent> events;
  events.reserve(items.Size());
  for (const Value& item : items.GetArray()) {
    std::vector<int> objectIds;
    objectIds.reserve(item["object_ids"].Size());
    for (const Value& id : item["object_ids"].GetArray()) {
      objectIds.push_back(id.GetInt());
    }
    events.emplace_back(static_cast<EventAction>(item["action"].GetInt()), item["object_id"].GetInt(),
                        std::move(objectIds));
  }
  return events;
}

std::unique_ptr<DetectionData> convert(const std::string& text, const SceneNames& names) {
  rapidjson::Document scene;
  scene.Parse(text.data(), text.size());
  if (scene.HasParseError()) {
    throw std::logic_error("the sample does not parse");
  }
  return std::make_unique<DetectionData>(scene["timestamp"].GetUint64(), convertDetections(scene["detections"], names),
                                         convertEvents(scene["events"]));
}

}  // namespace

ProcessFrame rapidjsonPipeline(const Sample& sample) {
  return [texts = ofEachScene(sample, jsonOf), names = namesOf(sample.detector)]() mutable {
    deliver(convert(texts.next(), names));
  };
}

}  // namespace tarn::VOD::bench
