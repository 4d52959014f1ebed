// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#ifndef TARNVOD_DETECTION_DATA_SCENE_CONVERSION_H
#define TARNVOD_DETECTION_DATA_SCENE_CONVERSION_H

#include "detection-data/scene_names.h"

#include <tarnvod/detection_data.h>

#include <cstdint>
#include <memory>

namespace VOD {
class Scene;
}

namespace tarn::VOD {

/** Called for each attribute that is dropped because its type has no name. */
using MissingAttributeType = void (*)(std::uint32_t type);

/**
 * Turns a scene into the record for the application: ids become names, in the scene's order; detections and
 * classifications of classes that have no name here are dropped, and so are events of an unknown action and attributes
 * of an unknown type.
 */
std::unique_ptr<DetectionData> convertScene(const ::VOD::Scene& scene, const SceneNames& names,
                                            MissingAttributeType missingAttributeType);

}  // namespace tarn::VOD

#endif
