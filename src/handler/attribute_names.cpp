// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "handler/attribute_names.h"

#include "handler/detector_queries.h"

#include <map>
#include <memory>
#include <string>
#include <utility>

namespace tarn::VOD {
namespace {

template <typename Table>
void forget(std::map<int, std::shared_ptr<const Table>>& tables, int camera) {
  if (const auto entry = tables.find(camera); entry != tables.end()) {
    entry->second = nullptr;
  }
}

/** A camera without any name gets no entry of its own; one that has an entry keeps it. */
template <typename Table, typename Id>
void replace(std::map<int, std::shared_ptr<const Table>>& tables, int camera, std::map<Id, std::string> names) {
  if (!names.empty()) {
    auto table = std::make_shared<const Table>(std::move(names));
    tables[camera] = std::move(table);
  }
}

}  // namespace

void refreshAttributeNames(const HandlerLock& /*lock*/, int camera) {
  forget(attributeTypeNames, camera);
  forget(attributeClassNames, camera);

  std::map<std::uint32_t, std::string> typeNames;
  std::map<AttributeClassId, std::string> classNames;
  const ::VOD::DetectorInformation information = readDetectorInformationForCamera(camera);
  for (const ::VOD::AttributeType& type : information.attribute_types()) {
    typeNames[type.id()] = type.name();
    for (const ::VOD::AttributeClass& value : type.attribute_classes()) {
      classNames[{type.id(), value.id()}] = value.name();
    }
  }
  replace(attributeTypeNames, camera, std::move(typeNames));
  replace(attributeClassNames, camera, std::move(classNames));
}

}  // namespace tarn::VOD
