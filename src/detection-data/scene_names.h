// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#ifndef TARNVOD_DETECTION_DATA_SCENE_NAMES_H
#define TARNVOD_DETECTION_DATA_SCENE_NAMES_H

#include "detection-data/name_table.h"

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <utility>

namespace tarn::VOD {

/** One value of one attribute type; ordered by type, then by value. */
struct AttributeClassId {
  std::uint32_t type;
  std::uint32_t value;

  explicit operator std::uint64_t() const { return (std::uint64_t{type} << 32U) | value; }

  friend bool operator<(const AttributeClassId& left, const AttributeClassId& right) {
    return static_cast<std::uint64_t>(left) < static_cast<std::uint64_t>(right);
  }
};

/** The requested classes only, so that a look-up is the filter too. */
using ClassNames = NameTable<std::int32_t>;

/** What a value is called, and its type, which is null when it has no name. */
struct AttributeValueName {
  std::string name;
  const std::string* type = nullptr;
};

/** The names that a detector gives its attributes. Those of the values refer to those of the types. */
class AttributeNames {
 public:
  using Types = NameTable<std::uint32_t>;
  using Values = NameTable<AttributeClassId, AttributeValueName>;

  /** What an attribute is called; null stands for what has no name. */
  struct Found {
    const std::string* type = nullptr;
    const std::string* value = nullptr;
  };

  /** Of the values' names, those of their types are filled in here. */
  AttributeNames(std::map<std::uint32_t, std::string>&& types, std::map<AttributeClassId, AttributeValueName>&& values)
      : types_(std::move(types)), values_(std::move(withTypes(values))) {}

  /** The names of an attribute without a value. */
  Found find(std::uint32_t type) const { return {types_.find(type), nullptr}; }

  /** The names of an attribute with a value; only one whose value has no name takes a second look-up. */
  Found find(const AttributeClassId& id) const {
    const AttributeValueName* const value = values_.find(id);
    return value != nullptr ? Found{value->type, &value->name} : find(id.type);
  }

  const Types& types() const { return types_; }
  const Values& values() const { return values_; }

 private:
  std::map<AttributeClassId, AttributeValueName>& withTypes(
      std::map<AttributeClassId, AttributeValueName>& values) const {
    for (auto& [id, value] : values) {
      value.type = types_.find(id.type);
    }
    return values;
  }

  Types types_;
  Values values_;
};

/**
 * What the ids in one camera's scenes mean. The tables never change once they are made: whoever holds them may read
 * them without a lock, whatever is put in their place meanwhile. Null stands for an empty table.
 */
struct SceneNames {
  std::shared_ptr<const ClassNames> classes;
  std::shared_ptr<const AttributeNames> attributes;
};

}  // namespace tarn::VOD

#endif
