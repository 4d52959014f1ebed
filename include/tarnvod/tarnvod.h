// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

/**
 * @file
 * All of tarnvod that does not need the platform's own header.
 */

#ifndef TARNVOD_TARNVOD_H
#define TARNVOD_TARNVOD_H

#include <tarnvod/camera.h>
#include <tarnvod/camera_status.h>
#include <tarnvod/detection_data.h>
#include <tarnvod/detector_information.h>
#include <tarnvod/detector_information_file_reader.h>
#include <tarnvod/frame_queue.h>
#include <tarnvod/handler.h>
#include <tarnvod/video_object_detection.pb.h>

#endif
