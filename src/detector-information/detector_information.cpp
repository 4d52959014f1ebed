// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "detector-information/model_members.h"
#include "support/printing.h"

#include <tarnvod/detector_information.h>
#include <tarnvod/video_object_detection.pb.h>

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
  return equalMembers(left, right);
}
bool operator==(const ObjectSchema& left, const ObjectSchema& right) {
  return equalMembers(left, right);
}
bool operator==(const DetectorInformation& left, const DetectorInformation& right) {
  return equalMembers(left, right);
}

// The enumerators are named and numbered as those of the message; only RX4420_DLPU is left out.
std::ostream& operator<<(std::ostream& out, ComputeChip chip) {
  const auto wireChip = static_cast<::VOD::ComputeChip>(chip);
  return printing::printEnumerator(out, wireChip,
                                   wireChip != ::VOD::RX4420_DLPU ? ::VOD::ComputeChip_Name(wireChip) : std::string());
}
std::ostream& operator<<(std::ostream& out, ReidStatus status) {
  const auto wireStatus = static_cast<::VOD::ReIDStatus>(status);
  return printing::printEnumerator(out, wireStatus, ::VOD::ReIDStatus_Name(wireStatus));
}
std::ostream& operator<<(std::ostream& out, FishEyeMountingPosition position) {
  const auto wirePosition = static_cast<::VOD::FisheyeMountingPosition>(position);
  return printing::printEnumerator(out, wirePosition, ::VOD::FisheyeMountingPosition_Name(wirePosition));
}

std::ostream& operator<<(std::ostream& out, const Calibration& calibration) {
  return printing::printRecord(out, calibration);
}
std::ostream& operator<<(std::ostream& out, const ObjectSchema& schema) {
  return printing::printRecord(out, schema);
}
std::ostream& operator<<(std::ostream& out, const DetectorInformation& information) {
  return printing::printRecord(out, information);
}

}  // namespace tarn::VOD
