// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#ifndef TARNVOD_COMMAND_RECORDING_BACKGROUND_H
#define TARNVOD_COMMAND_RECORDING_BACKGROUND_H

#include <filesystem>
#include <optional>

namespace tarn::command {

/** The file in a recording that shows what the camera sees while nobody is there. */
inline constexpr const char* backgroundFileName = "background.jpg";

/** That file, if the recording has one. */
inline std::optional<std::filesystem::path> backgroundIn(const std::filesystem::path& recording) {
  const std::filesystem::path file = recording / backgroundFileName;
  return std::filesystem::exists(file) ? std::make_optional(file) : std::nullopt;
}

}  // namespace tarn::command

#endif
