// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "other_formats.h"
#include "scene_generated.h"

#include <stdexcept>
#include <utility>

namespace tarn::VOD::bench {
namespace {

using flatbuffers::FlatBufferBuilder;
using flatbuffers::Offset;

Offset<flat::Detection> write(FlatBufferBuilder& builder, const ::VOD::Detection& detection) {
  std::vector<Offset<flat::Attribute>> attributes;
  for (const auto& attribute : detection.attributes()) {
    attributes.push_back(flat::CreateAttribute(builder, attribute.type(), attribute.class_(), attribute.score()));
  }
  std::vector<Offset<flat::Classification>> classifications;
  for (const auto& classification : detection.classifications()) {
    classifications.push_back(flat::CreateClassification(builder, classification.class_(), classification.score()));
  }
  return flat::CreateDetectionDirect(builder, detection.coord_1(), detection.coord_2(), detection.coord_3(),
                                     detection.coord_4(), detection.object_id(), detection.class_id(),
                                     detection.score(), detection.status(), &attributes, &classifications);
}

std::string bytesOf(const ::VOD::Scene& scene) {
  FlatBufferBuilder builder;
  std::vector<Offset<flat::Detection>> detections;
  for (const auto& detection : scene.detections()) {
    detections.push_back(write(builder, detection));
  }
  std::vector<Offset<flat::Event>> events;
  for (const auto& event : scene.events()) {
    const std::vector<int> ids(event.object_ids().begin(), event.object_ids().end());
    events.push_back(flat::CreateEventDirect(builder, event.action(), event.object_id(), &ids));
  }
  builder.Finish(flat::CreateSceneDirect(builder, scene.timestamp(), &detections, &events));
  return {reinterpret_cast<const char*>(builder.GetBufferPointer()), builder.GetSize()};
}

Data convertDetection(const flat::Detection& detection, const std::string& className, const SceneNames& names) {
  std::vector<Attribute> attributes;
  attributes.reserve(detection.attributes()->size());
  for (const flat::Attribute* const item : *detection.attributes()) {
    const AttributeNames::Found found = names.attributes->find(AttributeClassId{item->type(), item->class_()});
    if (found.type != nullptr) {
      attributes.emplace_back(*found.type, copyName(found.value), item->score());
    }
  }
  std::vector<Classification> classifications;
  classifications.reserve(detection.classifications()->size());
  for (const flat::Classification* const item : *detection.classifications()) {
    if (const std::string* const name = names.classes->find(static_cast<std::int32_t>(item->class_()))) {
      classifications.emplace_back(*name, item->score());
    }
  }
  return {detection.coord_1(),   detection.coord_2(),
          detection.coord_3(),   detection.coord_4(),
          detection.object_id(), className,
          detection.score(),     static_cast<DetectionStatus>(detection.status()),
          std::move(attributes), std::move(classifications)};
}

std::unique_ptr<DetectionData> convert(const flat::Scene& scene, const SceneNames& names) {
  std::vector<Data> detections;
  detections.reserve(scene.detections()->size());
  for (const flat::Detection* const item : *scene.detections()) {
    if (const std::string* const className = names.classes->find(static_cast<std::int32_t>(item->class_id()))) {
      detections.push_back(convertDetection(*item, *className, names));
    }
  }
  std::vector<VodEvent> events;
  events.reserve(scene.events()->size());
  for (const flat::Event* const item : *scene.events()) {
    events.emplace_back(static_cast<EventAction>(item->action()), item->object_id(),
                        std::vector<int>(item->object_ids()->begin(), item->object_ids()->end()));
  }
  return std::make_unique<DetectionData>(scene.timestamp(), std::move(detections), std::move(events));
}

}  // namespace

ProcessFrame flatbuffersPipeline(const Sample& sample) {
  return [messages = ofEachScene(sample, bytesOf), names = namesOf(sample.detector)]() mutable {
    const std::string& bytes = messages.next();
    // What comes from another process is verified before it is read.
    const auto* const data = reinterpret_cast<const std::uint8_t*>(bytes.data());
    flatbuffers::Verifier verifier(data, bytes.size());
    if (!flat::VerifySceneBuffer(verifier)) {
      throw std::logic_error("the sample is no valid buffer");
    }
    deliver(convert(*flat::GetScene(data), names));
  };
}

}  // namespace tarn::VOD::bench
