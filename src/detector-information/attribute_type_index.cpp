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

/** Marks an item as seen by a class; false if it already was. */
bool markFirst(std::size_t& mark, std::size_t classNumber) {
  return std::exchange(mark, classNumber) != classNumber;
}

}  // namespace

bool AttributeTypeIndex::byName(const Entry& left, const Entry& right) {
  return left.type->name() < right.type->name();
}

/** Of types that share both, the last in the message comes first. */
bool AttributeTypeIndex::byIdAndName(const Entry& left, const Entry& right) {
  return std::tie(left.id, left.nameNumber, right.place) < std::tie(right.id, right.nameNumber, left.place);
}

AttributeTypeIndex::AttributeTypeIndex(const ::VOD::DetectorInformation& message) {
  entries_.reserve(static_cast<std::size_t>(message.attribute_types_size()));
  for (int place = 0; place < message.attribute_types_size(); ++place) {
    const ::VOD::AttributeType& type = message.attribute_types(place);
    entries_.push_back({type.id(), place, 0, &type});
  }
  std::sort(entries_.begin(), entries_.end(), &byName);
  for (std::size_t i = 1; i < entries_.size(); ++i) {
    entries_[i].nameNumber = entries_[i - 1].nameNumber + (byName(entries_[i - 1], entries_[i]) ? 1 : 0);
  }
  classOfName_.resize(entries_.size());
  std::sort(entries_.begin(), entries_.end(), &byIdAndName);
  const auto shareIdAndName = [](const Entry& left, const Entry& right) {
    return left.id == right.id && left.nameNumber == right.nameNumber;
  };
  entries_.erase(std::unique(entries_.begin(), entries_.end(), shareIdAndName), entries_.end());
  classOfId_.resize(entries_.size());
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
