// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#ifndef TARNVOD_COMMAND_JSON_H
#define TARNVOD_COMMAND_JSON_H

#include <nlohmann/json_fwd.hpp>
#include <tarnvod/detection_data.h>
#include <tarnvod/detector_information.h>

#include <cstdint>
#include <string>
#include <vector>

namespace tarn::command {

/** Keeps the order in which members are added, and prints a float with the digits that read back as the same float. */
using Json =
    nlohmann::basic_json<nlohmann::ordered_map, std::vector, std::string, bool, std::int64_t, std::uint64_t, float>;

/**
 * A frame with the field names of the records, and the camera. Every field is always there: an optional that is empty
 * is null, as is a coordinate that is not a number. Enumerations by name.
 */
Json toJson(const VOD::DetectionData& frame, int camera);

/** An event as it stands in a frame. */
Json toJson(const VOD::VodEvent& event);

Json toJson(const VOD::DetectorInformation& information);

/**
 * The JSON text on one line, with its line end. Bytes in names that are not UTF-8 become U+FFFD; control characters are
 * escaped, so that a terminal can show the text.
 */
std::string oneLine(const Json& json);

/** The JSON text for people, with its line end. */
std::string indented(const Json& json);

}  // namespace tarn::command

#endif
