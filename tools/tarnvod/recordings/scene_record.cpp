// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "recordings/scene_record.h"

#include "base/text.h"
#include "detection-data/scene_conversion.h"

#include <array>
#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace tarn::command {
namespace {

/** Collects a name for every id in a scene, so that the library's conversion leaves no detection and no attribute out. */
class NamesOfAll {
 public:
  explicit NamesOfAll(const SceneNames& names) : names_(names) {}

  void add(const ::VOD::Detection& detection) {
    addClass(detection.class_id());
    for (const auto& attribute : detection.attributes()) {
      add(attribute);
    }
    for (const auto& classification : detection.classifications()) {
      addClass(classification.class_());
    }
  }

  VOD::SceneNames tables() {
    return {std::make_shared<VOD::ClassNames>(std::move(classes_)),
            std::make_shared<VOD::AttributeNames>(std::move(types_), std::move(values_))};
  }

 private:
  void addClass(std::uint32_t id) { classes_.emplace(static_cast<std::int32_t>(id), names_.className(id)); }

  void add(const ::VOD::Attribute& attribute) {
    types_.emplace(attribute.type(), names_.attributeName(attribute.type()));
    values_[{attribute.type(), attribute.class_()}].name = names_.attributeValue(attribute.type(), attribute.class_());
  }

  const SceneNames& names_;
  std::map<std::int32_t, std::string> classes_;
  std::map<std::uint32_t, std::string> types_;
  std::map<VOD::AttributeClassId, VOD::AttributeValueName> values_;
};

void ignore(std::uint32_t /*attributeType*/) {}

}  // namespace

std::uint64_t timestampOf(const std::string& scene) {
  ::VOD::Scene message;
  static_cast<void>(message.ParsePartialFromString(scene));
  return message.timestamp();
}

VOD::DetectionStatus statusOf(const ::VOD::Detection& detection) {
  return ::VOD::Detection_DetectionStatus_IsValid(detection.status())
             ? static_cast<VOD::DetectionStatus>(detection.status())
             : VOD::DetectionStatus::Untracked;
}

const std::string& statusName(const ::VOD::Detection& detection) {
  static const std::array<std::string, 3> names{nameOf(VOD::DetectionStatus::Untracked),
                                                nameOf(VOD::DetectionStatus::TrackedUnconfident),
                                                nameOf(VOD::DetectionStatus::TrackedConfident)};
  return names.at(static_cast<std::size_t>(statusOf(detection)));
}

std::vector<VOD::VodEvent> eventsOf(const ::VOD::Scene& scene) {
  if (scene.events().empty()) {
    return {};
  }
  // Without names the detections are left out.
  return std::move(VOD::convertScene(scene, VOD::SceneNames(), ignore)->events);
}

VOD::DetectionData recordOf(const ::VOD::Scene& scene, const SceneNames& names) {
  NamesOfAll all(names);
  for (const auto& detection : scene.detections()) {
    all.add(detection);
  }
  return std::move(*VOD::convertScene(scene, all.tables(), ignore));
}

}  // namespace tarn::command
