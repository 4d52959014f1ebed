// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#ifndef TARNVOD_COMMAND_BACKGROUND_H
#define TARNVOD_COMMAND_BACKGROUND_H

#include "http/http_message.h"

#include <filesystem>
#include <map>
#include <set>
#include <string>
#include <vector>

namespace tarn::command {

/** A picture of what a camera sees, to be shown behind the boxes. */
struct Background {
  std::string type;  ///< media type
  SharedText bytes;
};

/** @throw Failure  when the file cannot be read, is neither JPEG nor PNG, or is larger than 16 MiB */
Background readBackground(const std::filesystem::path& file);

/**
 * The picture of each camera that has one.
 *
 * @param arguments  each `FILE`, where there is one camera, or `CAMERA=FILE`
 * @throw UsageError  when an argument does not name one of the cameras
 * @throw Failure     as `readBackground`
 */
std::map<int, Background> readBackgrounds(const std::vector<std::string>& arguments, const std::set<int>& cameras);

}  // namespace tarn::command

#endif
