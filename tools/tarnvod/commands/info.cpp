// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "base/errors.h"
#include "base/options.h"
#include "base/output.h"
#include "base/report.h"
#include "base/text.h"
#include "cameras/service.h"
#include "commands/subcommands.h"
#include "recordings/detector.h"
#include "records/json.h"

#include <CLI/CLI.hpp>
#include <nlohmann/json.hpp>

#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace tarn::command {
namespace {

struct InfoOptions {
  std::optional<int> camera;
  std::optional<std::string> file;
  bool json = false;
};

std::string numberText(std::uint32_t number) {
  return number == 0 ? "not reported" : std::to_string(number);
}

std::vector<std::string> classLines(const VOD::Classifications& classifications) {
  std::vector<std::string> lines;
  for (const std::string& name : classifications.getClassNames()) {
    lines.push_back(nameColumn(name) + "id " +
                    std::to_string(classifications.getClassIdsToNamesMap({name}).begin()->first));
  }
  return lines;
}

std::vector<std::string> attributeLines(const VOD::DetectorInformation& detector) {
  std::vector<std::string> lines;
  for (const auto& [typeName, values] : detector.getSupportedAttributes()) {
    lines.push_back(nameColumn(typeName) + printable(joined(values, ", ")));
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
    lines.push_back(nameColumn(className) + (typeNames.empty() ? "none" : joined(typeNames, ", ")));
  }
  return lines;
}

std::vector<std::string> calibrationLines(const VOD::DetectorInformation& detector) {
  std::vector<std::string> lines;
  for (const auto& [className, calibrations] : detector.getCalibrationsContainer()) {
    for (const VOD::Calibration& calibration : calibrations) {
      lines.push_back(nameColumn(className) + "a " + shortest(calibration.coefficientA) + "  b " +
                      shortest(calibration.coefficientB) + "  c " + shortest(calibration.coefficientC));
    }
  }
  return lines;
}

std::string mountingText(const VOD::DetectorInformation& detector) {
  const auto position = detector.lookupFishEyeMountingPosition();
  return position ? nameOf(*position) : "not reported";
}

/** What the service says about itself, one value a line. */
std::string serviceText(const ServiceInformation& service) {
  return labelled("service version", service.version.empty() ? "not reported" : service.version) +
         labelled("service enabled", service.enabled ? "yes" : "no") +
         labelled("channels", numberText(service.channels)) +
         labelled("simultaneously", numberText(service.simultaneousChannels));
}

/** What a detector can do, one value a line, lists below each other. */
std::string detectorText(const VOD::DetectorInformation& detector) {
  return labelled("camera", std::to_string(detector.getCameraNbr())) +
         labelled("compute chip", nameOf(detector.getComputeChip())) +
         labelled("rotation", std::to_string(detector.getRotation())) +
         labelled("fisheye mounting", mountingText(detector)) +
         labelled("re-identification", nameOf(detector.getReidStatus())) +
         labelledList("classes", classLines(detector.getClassifications())) +
         labelledList("attributes by class", schemaLines(detector)) +
         labelledList("attribute values", attributeLines(detector)) +
         labelledList("calibrations", calibrationLines(detector));
}

std::vector<VOD::DetectorInformation> detectorsOf(const std::optional<int>& camera, const ServiceInformation& service) {
  if (camera) {
    checkCameraExists(*camera, service.channels);
    return {askForDetector(*camera)};
  }
  std::vector<VOD::DetectorInformation> detectors;
  for (int each = 1; each <= static_cast<int>(service.channels); ++each) {
    detectors.push_back(askForDetector(each));
  }
  return detectors;
}

int showFile(const InfoOptions& options) {
  const VOD::DetectorInformation detector = readDetectorFile(*options.file);
  if (options.json) {
    standardOutput().write(indented({{"detectors", {toJson(detector)}}}));
  } else {
    printReport(detectorText(detector));
  }
  return success;
}

int showService(const InfoOptions& options) {
  const ServiceInformation service = askForService();
  Json list = Json::array();
  std::string text = serviceText(service);
  for (const VOD::DetectorInformation& detector : detectorsOf(options.camera, service)) {
    list.push_back(toJson(detector));
    text += '\n' + detectorText(detector);
  }
  if (options.json) {
    standardOutput().write(indented({{"service", toJson(service)}, {"detectors", list}}));
  } else {
    printReport(text);
  }
  return success;
}

}  // namespace

Action defineInfo(CLI::App& command) {
  const auto options = std::make_shared<InfoOptions>();
  auto* camera = command.add_option("--camera", options->camera, "Print this camera's detector only");
  takesCameraNumbers(*camera);
  command.add_option("--file", options->file, "Print the detector in a detector-information file, without the service")
      ->type_name("F")
      ->excludes(camera);
  command.add_flag("--json", options->json, "Print one JSON object");
  return [options] { return options->file ? showFile(*options) : showService(*options); };
}

}  // namespace tarn::command
