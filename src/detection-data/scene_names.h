// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#ifndef TARNVOD_DETECTION_DATA_SCENE_NAMES_H
#define TARNVOD_DETECTION_DATA_SCENE_NAMES_H

#include "detection-data/name_table.h"

#include <cstdint>
#include <memory>

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
using AttributeTypeNames = NameTable<std::uint32_t>;
using AttributeClassNames = NameTable<AttributeClassId>;

/**
 * What the ids in one camera's scenes mean. The tables never change once they are made: whoever holds them may read
 * them without a lock, whatever is put in their place meanwhile. Null stands for an empty table.
 */
struct SceneNames {
  std::shared_ptr<const ClassNames> classes;
  std::shared_ptr<const AttributeTypeNames> attributeTypes;
  std::shared_ptr<const AttributeClassNames> attributeClasses;
};

}  // namespace tarn::VOD

#endif
