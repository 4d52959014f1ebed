// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

/**
 * @file
 * Detector information through a subscriber of the platform's own library: for applications that talk to the platform
 * themselves. This header alone needs the platform's header; others ask `tarn::VOD::Handler::getDetectorInformation`.
 */

#ifndef TARNVOD_READ_DETECTOR_INFORMATION_H
#define TARNVOD_READ_DETECTOR_INFORMATION_H

#include <tarnvod/export.h>
#include <tarnvod/video_object_detection.pb.h>
#include <video_object_detection_subscriber.h>

namespace tarn::VOD {

/**
 * Asks the service for the detector information of the subscriber's channel.
 *
 * Thread-safe as far as the platform is. Blocks on the service. May be called from a callback.
 *
 * @param subscriber  a handle that stays the caller's; it need not be subscribed
 * @return what the service said; an empty message, and a warning in the system log, when it did not answer. Bytes that
 * are not a valid message are not an error: the result holds what could be read of them
 * @throw std::bad_alloc  when memory runs out; nothing else
 */
TARNVOD_EXPORT ::VOD::DetectorInformation readDetectorInformation(video_object_detection_subscriber_st* subscriber);

}  // namespace tarn::VOD

#endif
