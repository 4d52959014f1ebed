// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

// What the service tells of itself. None of these takes the library's lock.

#include "support/platform_types.h"

#include <syslog.h>
#include <tarnvod/handler.h>
#include <video_object_detection_subscriber.h>

namespace tarn::VOD {

bool Handler::isDlpuEnabled() {
  return video_object_detection_subscriber_service_is_enabled();
}

std::uint32_t Handler::getNumberOfChannels() {
  OutParameterType<decltype(video_object_detection_subscriber_get_nbr_channels), 0> count = 0;
  if (video_object_detection_subscriber_get_nbr_channels(&count) != 0) {
    syslog(LOG_ERR, "Unable to get number of channels from video_object_detection_subscriber\n");
    return 0;
  }
  return static_cast<std::uint32_t>(count);
}

std::uint32_t Handler::getNumberOfSimultaneousChannels() {
  OutParameterType<decltype(video_object_detection_subscriber_get_nbr_channels_simultaneously), 0> count = 0;
  if (video_object_detection_subscriber_get_nbr_channels_simultaneously(&count) != 0) {
    syslog(LOG_ERR, "Unable to get number of simultaneous channels from video_object_detection_subscriber\n");
    return 0;
  }
  return static_cast<std::uint32_t>(count);
}

std::string Handler::getServiceVersion() {
  OutParameterType<decltype(video_object_detection_subscriber_get_version), 0> major = 0;
  OutParameterType<decltype(video_object_detection_subscriber_get_version), 1> minor = 0;
  if (const int result = video_object_detection_subscriber_get_version(&major, &minor); result != 0) {
    syslog(LOG_ERR, "Failed to get the version of the vod lib: %d\n", result);
    return {};
  }
  return std::to_string(major).append(1, '.').append(std::to_string(minor));
}

}  // namespace tarn::VOD
