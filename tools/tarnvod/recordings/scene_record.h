// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#ifndef TARNVOD_COMMAND_SCENE_RECORD_H
#define TARNVOD_COMMAND_SCENE_RECORD_H

#include "recordings/detector.h"

#include <tarnvod/detection_data.h>
#include <tarnvod/video_object_detection.pb.h>

#include <cstdint>
#include <string>
#include <vector>

namespace tarn::command {

VOD::DetectionStatus statusOf(const ::VOD::Detection& detection);

/** The name of a detection's status, as the library prints it. */
const std::string& statusName(const ::VOD::Detection& detection);

/** The events that applications get: those of known actions. */
std::vector<VOD::VodEvent> eventsOf(const ::VOD::Scene& scene);

/**
 * A raw scene as the record in which the library delivers it to an application that asks for all classes. What the
 * detector does not name is not left out: it is named by its number.
 */
VOD::DetectionData recordOf(const ::VOD::Scene& scene, const SceneNames& names);

/** The time stamp of a serialized scene; of damaged bytes, what could be read, or 0. */
std::uint64_t timestampOf(const std::string& scene);

}  // namespace tarn::command

#endif
