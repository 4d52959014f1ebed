// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "detection-data/scene_conversion.h"

#include <tarnvod/video_object_detection.pb.h>

#include <algorithm>
#include <array>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace tarn::VOD {
namespace {

/** An empty list with room for this many records, and no more. */
template <typename Record>
std::vector<Record> emptyListFor(std::size_t records) {
  std::vector<Record> list;
  list.reserve(records);
  return list;
}

/** Makes a record at the end of a list that has room for it. */
template <typename Record, typename... Members>
Record& append(std::vector<Record>& list, Members&&... members) {
  // So that the compiler leaves out what would move the list:
  if (list.size() == list.capacity()) {  // uncovered: all lists have room
    __builtin_unreachable();             // uncovered: as above
  }
  return list.emplace_back(std::forward<Members>(members)...);
}

/** The name of a class in a table that may not be there; null when it has none. */
const std::string* findClass(const SceneNames& names, std::uint32_t id) {
  return names.classes ? names.classes->find(static_cast<std::int32_t>(id)) : nullptr;
}

/**
 * Looks each message's name up and then calls `convert(message, name)` for each message, null for one without a name. In
 * between `records` becomes a list with room for those with a name, and no more: an application may queue what it gets.
 */
template <typename Record, typename Message, typename Find, typename Convert>
void convertNamed(const google::protobuf::RepeatedPtrField<Message>& messages, std::vector<Record>& records,
                  const Find& find, const Convert& convert) {
  constexpr std::size_t mostRemembered = 16;  // names that are not remembered are looked up again
  // NOLINTNEXTLINE(cppcoreguidelines-pro-type-member-init): read only where it was written before
  std::array<const std::string*, mostRemembered> remembered;
  const auto count = static_cast<std::size_t>(messages.size());
  const Message* const* const message = messages.data();  // the compiler would load it and the count again each time
  std::size_t named = 0;
  for (std::size_t i = 0; i < count; ++i) {
    const std::string* const name = find(*message[i]);
    named += name != nullptr ? 1 : 0;
    if (i < mostRemembered) {
      remembered[i] = name;
    }
  }
  records = emptyListFor<Record>(named);
  for (std::size_t i = 0; i < count; ++i) {
    convert(*message[i], i < mostRemembered ? remembered[i] : find(*message[i]));
  }
}

bool isKnown(::VOD::EventAction action) {
  return action == ::VOD::EVENT_DELETE || action == ::VOD::EVENT_CONNECT;
}

std::vector<VodEvent> convertEvents(const ::VOD::Scene& scene) {
  const auto isKept = [](const ::VOD::Event& event) { return isKnown(event.action()); };
  const auto kept = std::count_if(scene.events().begin(), scene.events().end(), isKept);
  auto events = emptyListFor<VodEvent>(static_cast<std::size_t>(kept));
  for (const ::VOD::Event& event : scene.events()) {
    if (isKept(event)) {
      append(events, static_cast<EventAction>(event.action()), event.object_id(),
             std::vector<int>(event.object_ids().begin(), event.object_ids().end()));
    }
  }
  return events;
}

AttributeNames::Found findNames(const ::VOD::Attribute& attribute, const AttributeNames* names) {
  if (names == nullptr) {
    return {};
  }
  return attribute.has_class_case() == ::VOD::Attribute::kClass
             ? names->find(AttributeClassId{attribute.type(), attribute.class_()})
             : names->find(attribute.type());
}

std::optional<std::uint32_t> scoreOf(const ::VOD::Attribute& attribute) {
  return attribute.has_score_case() == ::VOD::Attribute::kScore ? std::optional<std::uint32_t>(attribute.score())
                                                                : std::nullopt;
}

void convertAttributes(const ::VOD::Detection& detection, const AttributeNames* names,
                       MissingAttributeType missingAttributeType, std::vector<Attribute>& attributes) {
  attributes = emptyListFor<Attribute>(static_cast<std::size_t>(detection.attributes_size()));
  for (const ::VOD::Attribute& attribute : detection.attributes()) {
    const AttributeNames::Found found = findNames(attribute, names);
    if (found.type == nullptr) {
      missingAttributeType(attribute.type());
      continue;
    }
    Attribute& record = append(attributes, *found.type, std::nullopt, scoreOf(attribute));
    if (found.value != nullptr) {
      record.className = *found.value;
    }
  }
  if (attributes.size() != attributes.capacity()) {
    attributes.shrink_to_fit();
  }
}

/** The class's name; null when the classification is not delivered. */
const std::string* findClassName(const ::VOD::Classification& classification, const SceneNames& names) {
  const bool isComplete = classification.has_class_case() == ::VOD::Classification::kClass &&
                          classification.has_score_case() == ::VOD::Classification::kScore;
  return isComplete ? findClass(names, classification.class_()) : nullptr;
}

void convertClassifications(const ::VOD::Detection& detection, const SceneNames& names,
                            std::vector<Classification>& classifications) {
  const auto find = [&](const ::VOD::Classification& classification) { return findClassName(classification, names); };
  convertNamed(detection.classifications(), classifications, find,
               [&](const ::VOD::Classification& classification, const std::string* className) {
                 if (className != nullptr) {
                   append(classifications, std::nullopt, classification.score()).className = *className;
                 }
               });
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
  const auto find = [&](const ::VOD::Detection& detection) { return findClass(names, detection.class_id()); };
  convertNamed(scene.detections(), detections, find,
               [&](const ::VOD::Detection& detection, const std::string* className) {
                 if (className == nullptr) {
                   return;
                 }
                 Data& record =
                     append(detections, detection.coord_1(), detection.coord_2(), detection.coord_3(),
                            detection.coord_4(), detection.object_id(), *className, detection.score(),
                            convertStatus(detection.status()), std::vector<Attribute>(), std::vector<Classification>());
                 convertAttributes(detection, names.attributes.get(), missingAttributeType, record.attributes);
                 convertClassifications(detection, names, record.classifications);
               });
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
