// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#ifndef TARNVOD_COMMAND_FRAME_JSON_H
#define TARNVOD_COMMAND_FRAME_JSON_H

#include "base/text_buffer.h"
#include "records/envelope.h"

#include <tarnvod/detection_data.h>

#include <string>

namespace tarn::command {

/**
 * Appends a frame as JSON text on one line, without a line end: the name of the schema, and then the text that `toJson` and
 * `oneLine` make of it, written directly and many times faster. For output that goes on all day, which clears and reuses its buffer.
 */
void appendFrameJson(TextBuffer& text, const VOD::DetectionData& frame, int camera);

/** As above, with what identifies the frame in a fleet between the schema and the camera. */
void appendFrameJson(TextBuffer& text, const VOD::DetectionData& frame, const Origin& origin, const Envelope& envelope);

/** What `appendFrameJson` appends, as a text of its own. */
std::string frameJson(const VOD::DetectionData& frame, int camera);
std::string frameJson(const VOD::DetectionData& frame, const Origin& origin, const Envelope& envelope);

}  // namespace tarn::command

#endif
