// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#ifndef TARNVOD_COMMAND_FRAME_JSON_H
#define TARNVOD_COMMAND_FRAME_JSON_H

#include "records/envelope.h"

#include <tarnvod/detection_data.h>

#include <string>

namespace tarn::command {

/**
 * A frame as JSON text on one line, without a line end: the name of the schema, and then the text that `toJson` and
 * `oneLine` make of it, written directly and several times faster. For output that goes on all day.
 */
std::string frameJson(const VOD::DetectionData& frame, int camera);

/** As above, with what identifies the frame in a fleet between the schema and the camera. */
std::string frameJson(const VOD::DetectionData& frame, const Origin& origin, const Envelope& envelope);

}  // namespace tarn::command

#endif
