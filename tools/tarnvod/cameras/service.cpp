// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "cameras/service.h"

#include "base/errors.h"

#include <nlohmann/json.hpp>
#include <tarnvod/handler.h>

#include <stdexcept>
#include <system_error>

namespace tarn::command {

using VOD::Handler;

ServiceInformation askForService() {
  return {Handler::getServiceVersion(), Handler::isDlpuEnabled(), Handler::getNumberOfChannels(),
          Handler::getNumberOfSimultaneousChannels()};
}

Json toJson(const ServiceInformation& service) {
  return {{"version", service.version},
          {"enabled", service.enabled},
          {"channels", service.channels},
          {"simultaneousChannels", service.simultaneousChannels}};
}

std::optional<VOD::DetectorInformation> lookUpDetector(int camera) {
  try {
    VOD::DetectorInformation detector = Handler::getDetectorInformation(camera);
    // A service that fails to describe its detector gives an empty description; a detector knows classes.
    return detector.getClassifications().isEmpty() ? std::nullopt : std::make_optional(std::move(detector));
  } catch (const std::system_error&) {
    throw;
  } catch (const std::runtime_error&) {
    return std::nullopt;
  }
}

VOD::DetectorInformation askForDetector(int camera) {
  auto detector = lookUpDetector(camera);
  if (!detector) {
    throw Failure("camera " + std::to_string(camera) +
                  ": the service does not describe its detector; check that the service runs");
  }
  return std::move(*detector);
}

void checkCameraExists(int camera, std::uint32_t channels) {
  if (channels != 0 && static_cast<std::uint32_t>(camera) > channels) {
    throw Failure("camera " + std::to_string(camera) + ": there is no such camera; the service has " +
                  (channels == 1 ? "camera 1 only" : "cameras 1 to " + std::to_string(channels)));
  }
}

}  // namespace tarn::command
