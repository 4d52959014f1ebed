// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include <tarnvod/detector_information.h>

#include <utility>

namespace tarn::VOD {

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
