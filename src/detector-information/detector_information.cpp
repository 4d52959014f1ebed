// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include <tarnvod/detector_information.h>
#include <tarnvod/video_object_detection.pb.h>

#include <algorithm>
#include <cctype>
#include <utility>

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

std::vector<std::string> valueNamesOf(const ::VOD::AttributeType& type) {
  std::vector<std::string> names;
  for (const auto& attributeClass : type.attribute_classes()) {
    names.push_back(attributeClass.name());
  }
  return names;
}

/** Types are found by id, more than one if several share it; of types that share a name, the one found last stays. */
ObjectSchema schemaOf(const ::VOD::ObjectClass& objectClass, const ::VOD::DetectorInformation& message) {
  ObjectSchema schema;
  for (const auto id : objectClass.attribute_type_ids()) {
    for (const auto& type : message.attribute_types()) {
      if (type.id() == id) {
        schema.attributes[type.name()] = valueNamesOf(type);
      }
    }
  }
  return schema;
}

/** Names keep their case here, so that classes which differ only in case have a schema each. */
std::map<std::string, ObjectSchema> objectVariantsOf(const ::VOD::DetectorInformation& message) {
  std::map<std::string, ObjectSchema> variants;
  for (const auto& objectClass : message.object_classes()) {
    variants[objectClass.name()] = schemaOf(objectClass, message);
  }
  return variants;
}

/** Of classes whose names differ only in case, the first one's id stays: unlike the calibrations. */
Classifications classificationsOf(const ::VOD::DetectorInformation& message) {
  Classifications classifications;
  for (const auto& objectClass : message.object_classes()) {
    classifications.insertClass(static_cast<std::int32_t>(objectClass.id()), toLowerCase(objectClass.name()));
  }
  return classifications;
}

std::map<std::string, std::set<std::string>> supportedAttributesOf(const ::VOD::DetectorInformation& message) {
  std::map<std::string, std::set<std::string>> attributes;
  for (const auto& type : message.attribute_types()) {
    for (const auto& attributeClass : type.attribute_classes()) {
      attributes[type.name()].insert(attributeClass.name());
    }
  }
  return attributes;
}

}  // namespace

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

int DetectorInformation::getCameraNbr() const {
  return cameraNbr_;
}
const std::map<std::string, std::vector<Calibration>>& DetectorInformation::getCalibrationsContainer() const {
  return calibrations_;
}
const std::map<std::string, ObjectSchema>& DetectorInformation::getObjectVariants() const {
  return objectVariants_;
}
std::optional<FishEyeMountingPosition> DetectorInformation::lookupFishEyeMountingPosition() const {
  return fishEyeMountingPosition_;
}
ReidStatus DetectorInformation::getReidStatus() const {
  return reidStatus_;
}
ComputeChip DetectorInformation::getComputeChip() const {
  return computeChip_;
}
const Classifications& DetectorInformation::getClassifications() const {
  return classifications_;
}
int DetectorInformation::getRotation() const {
  return rotation_;
}
const std::map<std::string, std::set<std::string>>& DetectorInformation::getSupportedAttributes() const {
  return supportedAttributes_;
}

void DetectorInformation::setCameraNbr(int cameraNbr) {
  cameraNbr_ = cameraNbr;
}
void DetectorInformation::setCalibrationsContainer(std::map<std::string, std::vector<Calibration>> calibrations) {
  calibrations_ = std::move(calibrations);
}
void DetectorInformation::setObjectVariants(std::map<std::string, ObjectSchema> objectVariants) {
  objectVariants_ = std::move(objectVariants);
}
void DetectorInformation::setFishEyeMountingPosition(std::optional<FishEyeMountingPosition> position) {
  fishEyeMountingPosition_ = position;
}
void DetectorInformation::setReidStatus(ReidStatus status) {
  reidStatus_ = status;
}
void DetectorInformation::setComputeChip(ComputeChip chip) {
  computeChip_ = chip;
}
void DetectorInformation::setClassifications(Classifications classifications) {
  classifications_ = std::move(classifications);
}
void DetectorInformation::setRotation(int rotation) {
  rotation_ = rotation;
}
void DetectorInformation::setAttributes(std::map<std::string, std::set<std::string>> supportedAttributes) {
  supportedAttributes_ = std::move(supportedAttributes);
}

bool operator==(const Calibration& left, const Calibration& right) {
  return left.coefficientC == right.coefficientC && left.coefficientA == right.coefficientA &&
         left.coefficientB == right.coefficientB;
}

bool operator==(const ObjectSchema& left, const ObjectSchema& right) {
  return left.attributes == right.attributes;
}

bool operator==(const DetectorInformation& left, const DetectorInformation& right) {
  return left.cameraNbr_ == right.cameraNbr_ && left.calibrations_ == right.calibrations_ &&
         left.objectVariants_ == right.objectVariants_ &&
         left.fishEyeMountingPosition_ == right.fishEyeMountingPosition_ && left.reidStatus_ == right.reidStatus_ &&
         left.computeChip_ == right.computeChip_ && left.classifications_ == right.classifications_ &&
         left.rotation_ == right.rotation_ && left.supportedAttributes_ == right.supportedAttributes_;
}

}  // namespace tarn::VOD
