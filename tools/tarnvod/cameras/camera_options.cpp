// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "cameras/camera_options.h"

#include "base/options.h"

#include <CLI/CLI.hpp>

namespace tarn::command {

VOD::CameraRequest CameraOptions::request() const {
  VOD::CameraRequest request;
  request.classes.insert(classes.begin(), classes.end());
  if (region) {
    const auto& [a, b, c, d] = *region;
    request.region = VOD::VodChannelConfiguration{a, b, c, d};
  }
  return request;
}

std::array<CLI::Option*, 4> addCameraOptions(CLI::App& command, CameraOptions& options, const std::string& cameraName) {
  CLI::Option* camera = command.add_option(
      cameraName, options.cameras, "Cameras, counted from 1; several may be given (default: all that the service has)");
  takesCameraNumbers(*camera);
  CLI::Option* all =
      command.add_flag("--all-classes", options.allClasses, "All classes that the detector knows (the default)");
  CLI::Option* classes = command
                             .add_option("--class", options.classes,
                                         "Only objects of these classes, spelled as 'tarnvod info' prints them")
                             ->type_name("NAME")
                             ->excludes(all);
  CLI::Option* region = addFourNumbers(command, "--roi", options.region,
                                       "Region of interest, four numbers in the service's box convention");
  return {camera, classes, all, region};
}

}  // namespace tarn::command
