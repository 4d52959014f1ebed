// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#ifndef VOD_RECORDING_SESSION_H
#define VOD_RECORDING_SESSION_H

#include <filesystem>
#include <string>
#include <vector>

/** A session: the recordings of several cameras with one clock, in a folder that holds `camera-1`, `camera-2` and so on. */
namespace vod::recording {

/** The name of a camera's folder in a session; cameras are counted from 1. */
std::string cameraFolderName(int camera);

/**
 * The recordings of a session in the order of their cameras; empty when the folder is not a session, as when it holds a
 * recording itself, or cannot be listed.
 */
std::vector<std::filesystem::path> camerasOf(const std::filesystem::path& folder);

}  // namespace vod::recording

#endif
