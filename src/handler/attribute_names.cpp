// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "handler/attribute_names.h"

#include "handler/camera_detector.h"

#include <memory>
#include <utility>

namespace tarn::VOD {
namespace {

void forget(int camera) TARNVOD_REQUIRES(handlerMutex) {
  if (const auto entry = registry->attributes.find(camera); entry != registry->attributes.end()) {
    entry->second.names = nullptr;
  }
}

/** A camera without any name gets no entry of its own; one that has an entry keeps it. */
void replace(int camera, std::map<std::uint32_t, std::string> types,
             std::map<AttributeClassId, AttributeValueName> values) TARNVOD_REQUIRES(handlerMutex) {
  if (types.empty()) {
    return;
  }
  const bool hasValues = !values.empty();
  auto names = std::make_shared<const AttributeNames>(std::move(types), std::move(values));
  CameraAttributes& attributes = registry->attributes[camera];
  attributes.names = std::move(names);
  attributes.hadValues = attributes.hadValues || hasValues;
}

/** Each type with its values: both tables are in ascending order of the types, and each value belongs to one of them. */
std::map<std::string, std::set<std::string>> valuesByType(const AttributeNames& names) {
  const auto& types = names.types();
  const auto& values = names.values();
  std::map<std::string, std::set<std::string>> attributes;
  std::size_t value = 0;
  for (std::size_t type = 0; type < types.size(); ++type) {
    std::set<std::string> valueNames;
    for (; value < values.size() && values.id(value).type == types.id(type); ++value) {
      valueNames.insert(values.name(value).name);
    }
    attributes[types.name(type)] = std::move(valueNames);
  }
  return attributes;
}  // may be uncovered: runs when memory ends, which the messages of newer Protocol Buffers do not survive

}  // namespace

void refreshAttributeNames(const HandlerLock& /*lock*/, int camera) {
  forget(camera);

  std::map<std::uint32_t, std::string> typeNames;
  std::map<AttributeClassId, AttributeValueName> valueNames;
  const ::VOD::DetectorInformation information = readDetectorInformationForCamera(camera);
  for (const ::VOD::AttributeType& type : information.attribute_types()) {
    typeNames[type.id()] = type.name();
    for (const ::VOD::AttributeClass& value : type.attribute_classes()) {
      valueNames[{type.id(), value.id()}].name = value.name();
    }
  }
  replace(camera, std::move(typeNames), std::move(valueNames));
}

std::map<std::string, std::set<std::string>> supportedAttributes(const HandlerLock& lock, int camera) {
  const auto& known = registry->attributes;
  auto entry = known.find(camera);
  if (entry == known.end() || !entry->second.hadValues) {  // a detector without values is asked each time
    refreshAttributeNames(lock, camera);
    entry = known.find(camera);
  }
  const bool hasNames = entry != known.end() && entry->second.names;
  return hasNames ? valuesByType(*entry->second.names) : std::map<std::string, std::set<std::string>>();
}

}  // namespace tarn::VOD
