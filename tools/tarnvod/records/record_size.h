// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#ifndef TARNVOD_COMMAND_RECORD_SIZE_H
#define TARNVOD_COMMAND_RECORD_SIZE_H

#include <tarnvod/detection_data.h>

#include <cstddef>

namespace tarn::command {

/** The memory in bytes that a frame's record takes with its lists and names, without what allocating them adds. */
std::size_t sizeOf(const VOD::DetectionData& frame);

}  // namespace tarn::command

#endif
