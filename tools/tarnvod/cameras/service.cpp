// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "cameras/service.h"

#include "base/errors.h"

#include <nlohmann/json.hpp>
#include <tarnvod/handler.h>

#include <stdexcept>
#include <system_error>

#ifdef TARNVOD_HOST_PLATFORM
#include <vod_host.h>
#endif

namespace tarn::command {

using VOD::Handler;

std::uint32_t channelCount() {
#ifdef TARNVOD_HOST_PLATFORM
  if (const auto error = vod::host::configurationError()) {
    throw Failure(*error);
  }
#endif
  return Handler::getNumberOfChannels();
}

ServiceInformation askForService() {
  const std::uint32_t channels = channelCount();
  return {Handler::getServiceVersion(), Handler::isDlpuEnabled(), channels, Handler::getNumberOfSimultaneousChannels()};
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

bool recordingHasEnded([[maybe_unused]] int camera) {
#ifdef TARNVOD_HOST_PLATFORM
  try {
    return vod::host::servedChannel(camera - 1).isAtEndOfRecording();
  } catch (const std::out_of_range&) {
    return false;
  }
#else
  return false;
#endif
}

}  // namespace tarn::command
