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

enum class Scores { Shown, LeftOut };

/** The attributes with their values and scores: "upper_clothing red 80, hat 20". */
std::string attributesText(const VOD::Data& detection, Scores scores = Scores::Shown);

/** What happened: "deleted 7", "connected 8 with 3, 5". */
std::string eventText(const VOD::VodEvent& event);

/** "untracked", "unconfident", "confident". */
std::string statusText(VOD::DetectionStatus status);

}  // namespace tarn::command

#endif
