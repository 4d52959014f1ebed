// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#ifndef TARNVOD_COMMAND_CAMERA_METRICS_H
#define TARNVOD_COMMAND_CAMERA_METRICS_H

#include "metrics/metrics_text.h"

#include <tarnvod/camera_status.h>

#include <vector>

namespace tarn::command {

/** Adds the metrics that each camera has, whatever a subcommand does with its frames. */
void addCameraMetrics(MetricsText& text, const std::vector<VOD::CameraStatus>& cameras);

/** The label of a camera's samples. */
MetricsText::Labels labelsOf(const VOD::CameraStatus& camera);

}  // namespace tarn::command

#endif
