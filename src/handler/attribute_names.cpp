// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "handler/attribute_names.h"

#include "handler/camera_detector.h"

#include <memory>
#include <utility>

namespace tarn::VOD {
namespace {

template <typename Table>
using Tables = std::map<int, std::shared_ptr<const Table>>;

template <typename Table>
void forget(Tables<Table>& tables, int camera) {
  if (const auto entry = tables.find(camera); entry != tables.end()) {
    entry->second = nullptr;
  }
}

/** A camera without any name gets no entry of its own; one that has an entry keeps it. */
template <typename Table, typename Id>
void replace(Tables<Table>& tables, int camera, std::map<Id, std::string> names) {
  if (!names.empty()) {
    auto table = std::make_shared<const Table>(std::move(names));
    tables[camera] = std::move(table);
  }
}

template <typename Table>
const Table& tableOf(const Tables<Table>& tables, int camera, const Table& empty) {
  const auto entry = tables.find(camera);
  return entry != tables.end() && entry->second ? *entry->second : empty;
}

}  // namespace

void refreshAttributeNames(const HandlerLock& /*lock*/, int camera) {
  forget(registry->attributeTypeNames, camera);
  forget(registry->attributeClassNames, camera);

  std::map<std::uint32_t, std::string> typeNames;
  std::map<AttributeClassId, std::string> classNames;
  const ::VOD::DetectorInformation information = readDetectorInformationForCamera(camera);
  for (const ::VOD::AttributeType& type : information.attribute_types()) {
    typeNames[type.id()] = type.name();
    for (const ::VOD::AttributeClass& value : type.attribute_classes()) {
      classNames[{type.id(), value.id()}] = value.name();
    }
  }
  replace(registry->attributeTypeNames, camera, std::move(typeNames));
  replace(registry->attributeClassNames, camera, std::move(classNames));
}

std::map<std::string, std::set<std::string>> supportedAttributes(const HandlerLock& lock, int camera) {
  // A detector without attributes leaves no entry, and so is asked again each time.
  if (registry->attributeTypeNames.count(camera) == 0 || registry->attributeClassNames.count(camera) == 0) {
    refreshAttributeNames(lock, camera);
  }
  const AttributeTypeNames noTypes;
  const AttributeClassNames noValues;
  const AttributeTypeNames& types = tableOf(registry->attributeTypeNames, camera, noTypes);
  const AttributeClassNames& values = tableOf(registry->attributeClassNames, camera, noValues);
  std::map<std::string, std::set<std::string>> attributes;
  std::size_t value = 0;  // both tables are in ascending order of the types, and
                          // each value belongs to one of them
  for (std::size_t type = 0; type < types.size(); ++type) {
    std::set<std::string> names;
    for (; value < values.size() && values.id(value).type == types.id(type); ++value) {
      names.insert(values.name(value));
    }
    attributes[types.name(type)] = std::move(names);
  }
  return attributes;
}

}  // namespace tarn::VOD
