// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#ifndef TARNVOD_DETECTOR_INFORMATION_ATTRIBUTE_TYPE_INDEX_H
#define TARNVOD_DETECTOR_INFORMATION_ATTRIBUTE_TYPE_INDEX_H

#include <tarnvod/detector_information.h>

#include <cstddef>
#include <cstdint>
#include <vector>

namespace VOD {
class AttributeType;
class DetectorInformation;
class ObjectClass;
}  // namespace VOD

namespace tarn::VOD {

/**
 * The attribute types of a message by id, so that the attributes of a class cost what the class refers to and what it
 * has, whatever ids and names the service chooses. The message must outlive the index.
 */
class AttributeTypeIndex {
 public:
  explicit AttributeTypeIndex(const ::VOD::DetectorInformation& message);

  /**
   * The attributes of one class: for each id that it refers to, in order, all types of that id, in order. Of types that
   * share a name, the one found last stays; ids that no type has add nothing.
   */
  ObjectSchema schemaOf(const ::VOD::ObjectClass& objectClass);

 private:
  /** One type, with its place in the message; `nameNumber` is the same for types of the same name. */
  struct Entry {
    std::uint32_t id;
    int place;
    std::size_t nameNumber;
    const ::VOD::AttributeType* type;
  };

  static bool byName(const Entry& left, const Entry& right);
  static bool byIdAndName(const Entry& left, const Entry& right);

  std::vector<Entry> entries_;  ///< by id, then name; of types that share both, only the last
  // The number of the last class, counted by `classesSeen_`, that referred to an id (at the id's first entry) or that
  // has an attribute of a name: marks that need not be cleared for each class.
  std::vector<std::size_t> classOfId_;
  std::vector<std::size_t> classOfName_;
  std::size_t classesSeen_ = 0;
};

}  // namespace tarn::VOD

#endif
