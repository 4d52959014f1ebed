// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#ifndef TARNVOD_HANDLER_CAMERA_DETECTOR_H
#define TARNVOD_HANDLER_CAMERA_DETECTOR_H

#include <tarnvod/video_object_detection.pb.h>

namespace tarn::VOD {

/** The platform's channel of a camera: the number below it. Below the least camera number comes the greatest. */
constexpr int channelOf(int camera) {
  return static_cast<int>(static_cast<unsigned>(camera) - 1U);
}

/**
 * Asks the service for a camera's detector information, through the camera's own subscriber or else a temporary one.
 *
 * @throw std::runtime_error  when the camera is not subscribed and the service cannot be reached
 */
::VOD::DetectorInformation readDetectorInformationForCamera(int camera);

}  // namespace tarn::VOD

#endif
