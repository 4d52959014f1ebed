// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "detector-information/detector_conversion.h"

#include "detector-information/attribute_type_index.h"

#include <tarnvod/video_object_detection.pb.h>

#include <algorithm>
#include <cctype>

namespace tarn::VOD {
namespace {

std::string toLowerCase(std::string name) {
  std::transform(name.begin(), name.end(), name.begin(),
                 [](unsigned char byte) { return static_cast<char>(std::tolower(byte)); });
  return name;
}

/** The service counts cameras from 0; its greatest number wraps to camera 0. */
std::int32_t cameraNbrOf(const ::VOD::DetectorProperties& properties) {
  return static_cast<std::int32_t>(properties.camera_nbr() + 1U);
}

std::optional<FishEyeMountingPosition> fishEyeMountingPositionOf(const ::VOD::DetectorProperties& properties) {
  if (!properties.has_fisheye_mounting_position()) {
    return std::nullopt;
  }
  switch (properties.fisheye_mounting_position()) {
    case ::VOD::DESK_MOUNTED:
      return FishEyeMountingPosition::DESK_MOUNTED;
    case ::VOD::WALL_MOUNTED:
      return FishEyeMountingPosition::WALL_MOUNTED;
    case ::VOD::CEILING_MOUNTED:
      return FishEyeMountingPosition::CEILING_MOUNTED;
    default:
      return FishEyeMountingPosition::MOUNTING_UNKNOWN;
  }
}

ReidStatus reidStatusOf(const ::VOD::DetectorProperties& properties) {
  return properties.reid_status() == ::VOD::REID_RUNNING ? ReidStatus::REID_RUNNING : ReidStatus::REID_NOT_RUNNING;
}

/** The model's numbers are those of the wire, but it has no name for RX4420_DLPU. */
ComputeChip computeChipOf(const ::VOD::DetectorProperties& properties) {
  const auto chip = properties.inference_chip();
  const bool hasName = ::VOD::ComputeChip_IsValid(chip) && chip != ::VOD::RX4420_DLPU;
  return hasName ? static_cast<ComputeChip>(chip) : ComputeChip::CHIP_UNKNOWN;
}

std::vector<Calibration> calibrationsOf(const ::VOD::ObjectClass& objectClass) {
  std::vector<Calibration> calibrations;
  for (const auto& message : objectClass.calibrations()) {
    Calibration calibration{};
    calibration.coefficientC = message.coefficient_c();
    calibration.coefficientA = message.coefficient_a();
    calibration.coefficientB = message.coefficient_b();
    calibrations.push_back(calibration);
  }
  return calibrations;
}

/** Of classes whose names differ only in case, the last one's calibrations stay. */
std::map<std::string, std::vector<Calibration>> calibrationsOf(const ::VOD::DetectorInformation& message) {
  std::map<std::string, std::vector<Calibration>> calibrations;
  for (const auto& objectClass : message.object_classes()) {
    calibrations[toLowerCase(objectClass.name())] = calibrationsOf(objectClass);
  }
  return calibrations;
}

/**
 * Names keep their case here, so that classes which differ only in case have a schema each. Of classes that share a
 * name, the last one's schema stays: from the end it is the first, and no other is made.
 */
std::map<std::string, ObjectSchema> objectVariantsOf(const ::VOD::DetectorInformation& message) {
  AttributeTypeIndex types(message);
  std::map<std::string, ObjectSchema> variants;
  const auto& classes = message.object_classes();
  for (auto objectClass = classes.rbegin(); objectClass != classes.rend(); ++objectClass) {
    const auto [variant, isNew] = variants.try_emplace(objectClass->name());
    if (isNew) {
      variant->second = types.schemaOf(*objectClass);
    }
  }
  return variants;
}

/** Types without values get no entry; those that share a name share one. */
std::map<std::string, std::set<std::string>> supportedAttributesOf(const ::VOD::DetectorInformation& message) {
  std::map<std::string, std::set<std::string>> attributes;
  for (const auto& type : message.attribute_types()) {
    if (type.attribute_classes().empty()) {
      continue;
    }
    std::set<std::string>& names = attributes[type.name()];
    for (const auto& attributeClass : type.attribute_classes()) {
      names.insert(attributeClass.name());
    }
  }
  return attributes;
}

}  // namespace

/** Of classes whose names differ only in case, the first one's id stays: unlike the calibrations. */
Classifications classificationsOf(const ::VOD::DetectorInformation& message) {
  Classifications classifications;
  for (const auto& objectClass : message.object_classes()) {
    classifications.insertClass(static_cast<std::int32_t>(objectClass.id()), toLowerCase(objectClass.name()));
  }
  return classifications;
}

DetectorInformation::DetectorInformation(const ::VOD::DetectorInformation& message)
    : cameraNbr_(cameraNbrOf(message.properties())),
      calibrations_(calibrationsOf(message)),
      objectVariants_(objectVariantsOf(message)),
      fishEyeMountingPosition_(fishEyeMountingPositionOf(message.properties())),
      reidStatus_(reidStatusOf(message.properties())),
      computeChip_(computeChipOf(message.properties())),
      classifications_(classificationsOf(message)),
      rotation_(static_cast<std::int32_t>(message.properties().image_rotation())),
      supportedAttributes_(supportedAttributesOf(message)) {}

}  // namespace tarn::VOD
