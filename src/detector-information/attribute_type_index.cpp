// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "detector-information/attribute_type_index.h"

#include <tarnvod/video_object_detection.pb.h>

#include <algorithm>
#include <string>
#include <tuple>
#include <utility>

namespace tarn::VOD {
namespace {

std::vector<std::string> valueNamesOf(const ::VOD::AttributeType& type) {
  std::vector<std::string> names;
  names.reserve(static_cast<std::size_t>(type.attribute_classes_size()));
  for (const auto& attributeClass : type.attribute_classes()) {
    names.push_back(attributeClass.name());
  }
  return names;
}

/** The types in order of their names; those that share a name, in the service's order. */
std::vector<const ::VOD::AttributeType*> typesByName(const ::VOD::DetectorInformation& message) {
  std::vector<const ::VOD::AttributeType*> types;
  types.reserve(static_cast<std::size_t>(message.attribute_types_size()));
  for (const auto& type : message.attribute_types()) {
    types.push_back(&type);
  }
  std::stable_sort(types.begin(), types.end(),
                   [](const auto* left, const auto* right) { return left->name() < right->name(); });
  return types;
}

/** Marks an item as seen by a class; false if it already was. */
bool markFirst(std::size_t& mark, std::size_t classNumber) {
  return std::exchange(mark, classNumber) != classNumber;
}

}  // namespace

AttributeTypeIndex::AttributeTypeIndex(const ::VOD::DetectorInformation& message) {
  std::size_t nameNumber = 0;
  const std::string* previousName = nullptr;
  for (const ::VOD::AttributeType* type : typesByName(message)) {
    if (previousName != nullptr && *previousName != type->name()) {
      ++nameNumber;
    }
    previousName = &type->name();
    entries_.push_back({type->id(), nameNumber, type});
  }
  // Backwards, so that of types that share id and name the last comes first, and is the one that `unique` keeps.
  std::reverse(entries_.begin(), entries_.end());
  const auto key = [](const Entry& entry) { return std::pair(entry.id, entry.nameNumber); };
  std::stable_sort(entries_.begin(), entries_.end(),
                   [&](const Entry& left, const Entry& right) { return key(left) < key(right); });
  entries_.erase(std::unique(entries_.begin(), entries_.end(),
                             [&](const Entry& left, const Entry& right) { return key(left) == key(right); }),
                 entries_.end());
  classOfId_.resize(entries_.size());
  classOfName_.resize(nameNumber + 1);
}

ObjectSchema AttributeTypeIndex::schemaOf(const ::VOD::ObjectClass& objectClass) {
  ObjectSchema schema;
  const std::size_t classNumber = ++classesSeen_;
  // From the end, so that what counts comes first and nothing has to be replaced.
  const auto& ids = objectClass.attribute_type_ids();
  for (auto id = ids.rbegin(); id != ids.rend(); ++id) {
    auto entry = std::lower_bound(entries_.begin(), entries_.end(), *id,
                                  [](const Entry& other, std::uint32_t wanted) { return other.id < wanted; });
    if (entry == entries_.end() || entry->id != *id ||
        !markFirst(classOfId_[static_cast<std::size_t>(entry - entries_.begin())], classNumber)) {
      continue;
    }
    for (; entry != entries_.end() && entry->id == *id; ++entry) {
      if (markFirst(classOfName_[entry->nameNumber], classNumber)) {
        schema.attributes.emplace(entry->type->name(), valueNamesOf(*entry->type));
      }
    }
  }
  return schema;
}

}  // namespace tarn::VOD
