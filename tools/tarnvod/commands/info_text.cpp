// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "commands/info_text.h"

#include "base/facts.h"
#include "base/text.h"

#include <vector>

namespace tarn::command {
namespace {

std::string numberText(std::uint32_t number) {
  return number == 0 ? "not told by the service" : std::to_string(number);
}

std::vector<std::string> classLines(const VOD::Classifications& classifications) {
  std::vector<std::string> lines;
  for (const std::string& name : classifications.getClassNames()) {
    lines.push_back(columnOf(name) + "id " +
                    std::to_string(classifications.getClassIdsToNamesMap({name}).begin()->first));
  }
  return lines;
}

std::vector<std::string> attributeLines(const VOD::DetectorInformation& detector) {
  std::vector<std::string> lines;
  for (const auto& [typeName, values] : detector.getSupportedAttributes()) {
    lines.push_back(columnOf(typeName) + printable(joined(values, ", ")));
  }
  return lines;
}

/** Which attributes each class of objects has. */
std::vector<std::string> schemaLines(const VOD::DetectorInformation& detector) {
  std::vector<std::string> lines;
  for (const auto& [className, schema] : detector.getObjectVariants()) {
    std::vector<std::string> typeNames;
    for (const auto& entry : schema.attributes) {
      typeNames.push_back(printable(entry.first));
    }
    lines.push_back(columnOf(className) + (typeNames.empty() ? "none" : joined(typeNames, ", ")));
  }
  return lines;
}

std::vector<std::string> calibrationLines(const VOD::DetectorInformation& detector) {
  std::vector<std::string> lines;
  for (const auto& [className, calibrations] : detector.getCalibrationsContainer()) {
    for (const VOD::Calibration& calibration : calibrations) {
      lines.push_back(columnOf(className) + "a " + shortest(calibration.coefficientA) + "  b " +
                      shortest(calibration.coefficientB) + "  c " + shortest(calibration.coefficientC));
    }
  }
  return lines;
}

std::string mountingText(const VOD::DetectorInformation& detector) {
  const auto position = detector.lookupFishEyeMountingPosition();
  return position ? nameOf(*position) : "none told";
}

}  // namespace

std::string serviceText(const ServiceInformation& service) {
  return fact("service version", service.version.empty() ? "not told by the service" : service.version) +
         fact("service enabled", service.enabled ? "yes" : "no") + fact("channels", numberText(service.channels)) +
         fact("simultaneously", numberText(service.simultaneousChannels));
}

std::string detectorText(const VOD::DetectorInformation& detector) {
  return fact("camera", std::to_string(detector.getCameraNbr())) +
         fact("compute chip", nameOf(detector.getComputeChip())) +
         fact("rotation", std::to_string(detector.getRotation())) + fact("fisheye mounting", mountingText(detector)) +
         fact("re-identification", nameOf(detector.getReidStatus())) +
         facts("classes", classLines(detector.getClassifications())) +
         facts("attributes by class", schemaLines(detector)) + facts("attribute values", attributeLines(detector)) +
         facts("calibrations", calibrationLines(detector));
}

}  // namespace tarn::command
