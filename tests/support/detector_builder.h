// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#ifndef TARNVOD_TESTS_SUPPORT_DETECTOR_BUILDER_H
#define TARNVOD_TESTS_SUPPORT_DETECTOR_BUILDER_H

#include <tarnvod/video_object_detection.pb.h>

#include <initializer_list>
#include <string>

namespace tarn::test {

/** Adds a class and returns it, to be filled further. */
inline ::VOD::ObjectClass& addClass(::VOD::DetectorInformation& message, std::uint32_t id, const std::string& name,
                                    std::initializer_list<std::uint32_t> attributeTypes = {}) {
  auto& objectClass = *message.add_object_classes();
  objectClass.set_id(id);
  objectClass.set_name(name);
  for (const auto type : attributeTypes) {
    objectClass.add_attribute_type_ids(type);
  }
  return objectClass;
}

/** Adds a calibration to a class. */
inline void addCalibration(::VOD::ObjectClass& objectClass, float a, float b, float c) {
  auto& calibration = *objectClass.add_calibrations();
  calibration.set_coefficient_a(a);
  calibration.set_coefficient_b(b);
  calibration.set_coefficient_c(c);
}

/** Adds a value to an attribute type. */
inline void addAttributeValue(::VOD::AttributeType& type, std::uint32_t id, const std::string& name) {
  ::VOD::AttributeClass& added = *type.add_attribute_classes();
  added.set_id(id);
  added.set_name(name);
}

/** Adds an attribute type, with values that have no ids, and returns it, to be filled further. */
inline ::VOD::AttributeType& addAttributeType(::VOD::DetectorInformation& message, std::uint32_t id,
                                              const std::string& name, std::initializer_list<const char*> values = {}) {
  auto& type = *message.add_attribute_types();
  type.set_id(id);
  type.set_name(name);
  for (const char* const value : values) {
    type.add_attribute_classes()->set_name(value);
  }
  return type;
}

}  // namespace tarn::test

#endif
