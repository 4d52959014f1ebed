// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#ifndef TARNVOD_COMMAND_CAMERA_OPTIONS_H
#define TARNVOD_COMMAND_CAMERA_OPTIONS_H

#include <tarnvod/camera.h>

#include <array>
#include <optional>
#include <string>
#include <vector>

namespace CLI {
class App;
class Option;
}  // namespace CLI

namespace tarn::command {

/** Which cameras, and what of them; no cameras are all that the service has. */
struct CameraOptions {
  std::vector<int> cameras;
  std::vector<std::string> classes;
  bool allClasses = false;
  std::optional<std::array<float, 4>> region;

  VOD::CameraRequest request() const;
};

/**
 * Adds `--camera`, `--class`, `--all-classes` and `--roi`; returns them in this order.
 *
 * @param cameraName  `camera,--camera` where cameras may be named without the option as well
 */
std::array<CLI::Option*, 4> addCameraOptions(CLI::App& command, CameraOptions& options,
                                             const std::string& cameraName = "--camera");

}  // namespace tarn::command

#endif
