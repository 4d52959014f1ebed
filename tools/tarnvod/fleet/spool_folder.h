// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#ifndef TARNVOD_COMMAND_SPOOL_FOLDER_H
#define TARNVOD_COMMAND_SPOOL_FOLDER_H

#include <cstdint>
#include <filesystem>

/** The folder of a spool, with a folder for each segment. */
namespace tarn::command {

/** Makes the folder if it does not exist. @throw Failure */
std::filesystem::path createdSpoolFolder(std::filesystem::path folder);

/** Where a segment is. */
std::filesystem::path segmentFolder(const std::filesystem::path& folder, std::uint64_t segment);

/** Where a segment is while it is being made or removed; what is left of it after a crash is of no use. */
std::filesystem::path temporarySegmentFolder(const std::filesystem::path& folder);

/** Removes a segment, all of it or, after a crash, nothing. @throw RecordingError */
void removeSegment(const std::filesystem::path& folder, std::uint64_t segment);

/** Of all files in a segment. */
std::uint64_t bytesIn(const std::filesystem::path& segment);

}  // namespace tarn::command

#endif
