// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#ifndef VOD_RECORDING_SEGMENTS_H
#define VOD_RECORDING_SEGMENTS_H

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

/** A recording of several segments: a folder that holds folders `segment-000001` and so on, each a plain recording. */
namespace vod::recording {

/** The name of a segment's folder; numbers are at least 1. */
std::string segmentName(std::uint64_t number);

/** The number in the name of a segment's folder, or none when this is not such a name. */
std::optional<std::uint64_t> segmentNumber(const std::string& name);

/**
 * The plain recordings that a recording consists of, in order: its segments, or the folder itself when it holds scenes
 * of its own, has no segments or cannot be listed.
 */
std::vector<std::filesystem::path> partsOf(const std::filesystem::path& folder);

}  // namespace vod::recording

#endif
