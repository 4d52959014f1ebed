// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "pipelines.h"

#include "detection-data/scene_conversion.h"
#include "sample_scenes.h"

#include <recording/recording.h>
#include <recording/recording_reader.h>
#include <tarnvod/camera.h>
#include <tarnvod/handler.h>
#include <vod_host.h>

#include <cstring>
#include <filesystem>
#include <map>
#include <memory>
#include <optional>
#include <stdexcept>
#include <utility>
#include <variant>

namespace tarn::VOD::bench {
namespace {

constexpr int pointsPerOutline = 48;
constexpr int framesBetweenScenes = 20;

void ignoreMissingType(std::uint32_t /*type*/) {}

/** Keeps the compiler from leaving out what computes the value. */
template <typename Value>
void use(const Value& value) {
  asm volatile("" : : "r"(&value) : "memory");
}

void parse(::VOD::Scene& scene, const std::string& bytes) {
  if (!scene.ParseFromArray(bytes.data(), static_cast<int>(bytes.size()))) {
    throw std::logic_error("the sample does not parse");
  }
}

Cycle<std::string> messagesOf(const Sample& sample) {
  return ofEachScene(sample, [](const ::VOD::Scene& scene) { return scene.SerializeAsString(); });
}

ProcessFrame parseAlone(const Sample& sample) {
  return [messages = messagesOf(sample)]() mutable {
    ::VOD::Scene scene;
    parse(scene, messages.next());
    use(scene);
  };
}

ProcessFrame convertAlone(const Sample& sample) {
  return [scenes = Cycle(sample.scenes), names = namesOf(sample.detector)]() mutable {
    use(*convertScene(scenes.next(), names, ignoreMissingType));
  };
}

/** What a frame must take in addition to its parse: an application receives a record of its own and destroys it. */
ProcessFrame copyRecord(const Sample& sample) {
  return [records = recordsOf(sample)]() mutable { use(*std::make_unique<DetectionData>(records.next())); };
}

ProcessFrame copyBytes(const Sample& sample) {
  return [messages = messagesOf(sample), target = std::string()]() mutable {
    const std::string& bytes = messages.next();
    target.resize(bytes.size());
    std::memcpy(target.data(), bytes.data(), bytes.size());
    use(target);
  };
}

ProcessFrame framePipelineOfAllClasses(const Sample& sample) {
  return framePipeline(sample, 1, detectorClasses);
}

void serve(const Sample& sample, int camera) {
  vod::host::channel(camera - 1).detectorInformation(sample.detector.SerializeAsString());
}

/** What the service would call for a camera that is set up: the platform's own costs stay out of it. */
ProcessFrame delivery(const Sample& sample, int camera) {
  const vod::host::Registration registered =
      vod::host::registration(vod::host::channel(camera - 1).subscriptions().front());
  return [messages = messagesOf(sample), registered]() mutable {
    const std::string& bytes = messages.next();
    registered.detection(reinterpret_cast<const std::uint8_t*>(bytes.data()), static_cast<std::int32_t>(bytes.size()),
                         registered.userData);
  };
}

ProcessFrame cameraPipeline(const Sample& sample) {
  constexpr int number = 1;
  Handler::teardown(number);
  serve(sample, number);
  const auto emptyApplication = [](std::unique_ptr<DetectionData> frame) { use(*frame); };
  const auto camera = std::make_shared<Camera>(number, firstClasses(sample.detector), emptyApplication);
  if (camera->status().state != CameraState::Receiving) {
    throw std::runtime_error(camera->status().reason);
  }
  return [camera, deliver = delivery(sample, number)] { deliver(); };
}

/** As an application has it that wants its cameras back after an outage: with the retry thread. */
ProcessFrame framePipelineWithRetries(const Sample& sample) {
  constexpr int period = 1;
  Handler::initialize(period);
  const std::shared_ptr<void> thread(nullptr, [](void*) { Handler::deinitialize(); });
  return [thread, deliver = framePipelineOfAllClasses(sample)] { deliver(); };
}

std::optional<::VOD::Scene> sceneOf(const vod::recording::NextScene& next) {
  const auto* const recorded = std::get_if<vod::recording::RecordedScene>(&next);
  if (recorded == nullptr) {
    return std::nullopt;
  }
  std::optional<::VOD::Scene> scene(std::in_place);
  parse(*scene, recorded->bytes);
  return scene;
}

/** From the recording that comes with the project. */
Sample street() {
  const std::filesystem::path folder = TARNVOD_STREET;
  Sample sample{"street", {}, {}};
  if (!sample.detector.ParseFromString(vod::recording::readDetectorInformation(folder))) {
    throw std::runtime_error("the street's detector information does not parse");
  }
  vod::recording::RecordingReader reader(folder);
  for (int number = 0; auto scene = sceneOf(reader.next()); ++number) {
    if (number % framesBetweenScenes == 0) {
      sample.scenes.push_back(std::move(*scene));
    }
  }
  return sample;
}

}  // namespace

std::vector<Sample> samples() {
  std::vector<Sample> all;
  for (const int detections : {0, 3, 12, 100}) {
    all.push_back({std::to_string(detections), {sampleScene(detections)}, sampleDetector()});
  }
  all.push_back({"12-outlines", {sampleScene(12)}, sampleDetector()});
  addOutlines(all.back().scenes.front(), pointsPerOutline);
  all.push_back({"12-long-names", {sampleScene(12)}, sampleDetector(TypeNames::Long)});
  all.push_back(street());
  return all;
}

SceneNames namesOf(const ::VOD::DetectorInformation& detector) {
  std::map<std::int32_t, std::string> classes;
  std::map<std::uint32_t, std::string> types;
  std::map<AttributeClassId, AttributeValueName> values;
  for (const auto& objectClass : detector.object_classes()) {
    classes[static_cast<std::int32_t>(objectClass.id())] = objectClass.name();
  }
  for (const auto& type : detector.attribute_types()) {
    types[type.id()] = type.name();
    for (const auto& value : type.attribute_classes()) {
      values[{type.id(), value.id()}].name = value.name();
    }
  }
  return {std::make_shared<const ClassNames>(std::move(classes)),
          std::make_shared<const AttributeNames>(std::move(types), std::move(values))};
}

Cycle<DetectionData> recordsOf(const Sample& sample) {
  const SceneNames names = namesOf(sample.detector);
  return ofEachScene(sample,
                     [&names](const ::VOD::Scene& scene) { return *convertScene(scene, names, ignoreMissingType); });
}

ProcessFrame framePipeline(const Sample& sample, int camera, int classes) {
  Handler::teardown(camera);
  serve(sample, camera);
  const auto emptyApplication = [](std::unique_ptr<DetectionData> frame, int /*camera*/) { use(*frame); };
  if (!Handler::setup(camera, emptyApplication, firstClasses(sample.detector, classes))) {
    throw std::runtime_error("camera " + std::to_string(camera) + " cannot be set up");
  }
  return delivery(sample, camera);
}

std::vector<Pipeline> libraryPipelines() {
  return {{"frame", framePipelineOfAllClasses},
          {"parse", parseAlone},
          {"convert", convertAlone},
          {"copy", copyBytes},
          {"copy-record", copyRecord}};
}

std::vector<Pipeline> allPipelines() {
  std::vector<Pipeline> pipelines = libraryPipelines();
  for (Pipeline& pipeline : otherFormatPipelines()) {
    pipelines.push_back(std::move(pipeline));
  }
  return pipelines;
}

std::vector<Pipeline> countedPipelines() {
  std::vector<Pipeline> pipelines = allPipelines();
  pipelines.push_back({"frame-with-retries", framePipelineWithRetries});
  pipelines.push_back({"camera", cameraPipeline});
#ifdef TARNVOD_BENCHMARK_LINES
  pipelines.push_back({"line", linePipeline});
#endif
  return pipelines;
}

}  // namespace tarn::VOD::bench
