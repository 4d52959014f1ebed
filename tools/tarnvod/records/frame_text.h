// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#ifndef TARNVOD_COMMAND_FRAME_TEXT_H
#define TARNVOD_COMMAND_FRAME_TEXT_H

#include <tarnvod/detection_data.h>

#include <string>

namespace tarn::command {

/** A frame on one line, for people and for line tools; with its line end. */
std::string frameLine(const VOD::DetectionData& frame, int camera);

/** The four numbers of the box, three digits after the point. */
std::string boxText(const VOD::Data& detection);

/** How much of attributes is shown; each adds to the one before it. */
enum class AttributeDetail {
  Values,  ///< "red", or the attribute's name if it has no value
  Names,   ///< "upper_clothing red"
  Scores,  ///< "upper_clothing red 80"
};

/** The attributes: "upper_clothing red 80, hat 20". */
std::string attributesText(const VOD::Data& detection, AttributeDetail detail = AttributeDetail::Scores);

/** What happened: "deleted 7", "connected 8 with 3, 5". */
std::string eventText(const VOD::VodEvent& event);

/** "untracked", "unconfident", "confident". */
std::string statusText(VOD::DetectionStatus status);

}  // namespace tarn::command

#endif
