// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#ifndef TARNVOD_COMMAND_INFO_TEXT_H
#define TARNVOD_COMMAND_INFO_TEXT_H

#include "cameras/service.h"

#include <string>

namespace tarn::command {

/** What the service tells of itself, one fact a line. */
std::string serviceText(const ServiceInformation& service);

/** What a detector can do, one fact a line, lists indented. */
std::string detectorText(const VOD::DetectorInformation& detector);

}  // namespace tarn::command

#endif
