// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#ifndef TARNVOD_VIDEO_RECORDER_MESSAGES_H
#define TARNVOD_VIDEO_RECORDER_MESSAGES_H

#include "video-recorder/colours.h"
#include "video-recorder/tracker.h"

#include <tarnvod/video_object_detection.pb.h>

#include <cstdint>
#include <map>

namespace recorder {

/** By a person's id. */
using Wardrobe = std::map<std::uint32_t, Clothing>;

/**
 * What this detector can do.
 *
 * @param camera  the camera that the recording stands for, from 1
 */
VOD::DetectorInformation describeDetector(int camera);

/**
 * One frame in the words of the service.
 *
 * @param timestamp  microseconds from the start of the recording
 */
VOD::Scene describeFrame(std::uint64_t timestamp, const TrackedFrame& frame, const Wardrobe& wardrobe);

}  // namespace recorder

#endif
