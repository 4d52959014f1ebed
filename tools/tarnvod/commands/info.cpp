// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "base/errors.h"
#include "base/options.h"
#include "base/output.h"
#include "cameras/service.h"
#include "commands/info_text.h"
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
  standardOutput().write(options.json ? indented({{"detectors", {toJson(detector)}}}) : detectorText(detector));
  return success;
}

int showService(const InfoOptions& options) {
  const ServiceInformation service = askForService();
  const std::vector<VOD::DetectorInformation> detectors = detectorsOf(options.camera, service);
  if (options.json) {
    Json list = Json::array();
    for (const VOD::DetectorInformation& detector : detectors) {
      list.push_back(toJson(detector));
    }
    standardOutput().write(indented({{"service", toJson(service)}, {"detectors", list}}));
    return success;
  }
  std::string text = serviceText(service);
  for (const VOD::DetectorInformation& detector : detectors) {
    text += '\n' + detectorText(detector);
  }
  standardOutput().write(text);
  return success;
}

}  // namespace

Action defineInfo(CLI::App& command) {
  const auto options = std::make_shared<InfoOptions>();
  auto* camera = command.add_option("--camera", options->camera, "This camera's detector; all cameras' if not given");
  takesCameraNumbers(*camera);
  command.add_option("--file", options->file, "The detector described by a detector-information file; asks no service")
      ->type_name("F")
      ->excludes(camera);
  command.add_flag("--json", options->json, "As one JSON object");
  return [options] { return options->file ? showFile(*options) : showService(*options); };
}

}  // namespace tarn::command
