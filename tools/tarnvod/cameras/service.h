// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#ifndef TARNVOD_COMMAND_SERVICE_H
#define TARNVOD_COMMAND_SERVICE_H

#include "records/json.h"

#include <cstdint>
#include <optional>
#include <string>

/** Questions to the service, with answers that tell whether there was one. */
namespace tarn::command {

struct ServiceInformation {
  std::string version;  ///< empty when the service did not tell
  bool enabled = false;
  std::uint32_t channels = 0;              ///< 0 when the service did not tell
  std::uint32_t simultaneousChannels = 0;  ///< 0 when the service did not tell
};

ServiceInformation askForService();
Json toJson(const ServiceInformation& service);

/** The camera's detector; nothing when the service does not answer. */
std::optional<VOD::DetectorInformation> lookUpDetector(int camera);

/** As above. @throw Failure when the service does not answer */
VOD::DetectorInformation askForDetector(int camera);

/** @throw Failure when the service has that many channels and the camera is none of them; 0 is an unknown number */
void checkCameraExists(int camera, std::uint32_t channels);

}  // namespace tarn::command

#endif
