// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#ifndef TARNVOD_COMMAND_SERVICE_H
#define TARNVOD_COMMAND_SERVICE_H

#include "records/json.h"

#include <cstdint>
#include <optional>
#include <string>

/** Questions to the service, with answers that say whether there was one. */
namespace tarn::command {

struct ServiceInformation {
  std::string version;  ///< empty when the service did not report it
  bool enabled = false;
  std::uint32_t channels = 0;              ///< 0 when the service did not report it
  std::uint32_t simultaneousChannels = 0;  ///< 0 when the service did not report it
};

/**
 * How many channels the service has; 0 when it does not report that.
 *
 * @throw Failure  when the host platform cannot work with its environment variables, which no retry would change
 */
std::uint32_t channelCount();

/** @throw Failure  as `channelCount` */
ServiceInformation askForService();
Json toJson(const ServiceInformation& service);

/** The camera's detector; nothing when the service does not answer. */
std::optional<VOD::DetectorInformation> lookUpDetector(int camera);

/** As above. @throw Failure when the service does not answer */
VOD::DetectorInformation askForDetector(int camera);

/** Whether the host platform plays a recording as this camera, without a loop, and it has come to its end. */
bool recordingHasEnded(int camera);

/** @throw Failure  when the camera is not one of the service's channels; a count of 0 is unknown and checks nothing */
void checkCameraExists(int camera, std::uint32_t channels);

}  // namespace tarn::command

#endif
