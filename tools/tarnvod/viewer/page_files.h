// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#ifndef TARNVOD_COMMAND_PAGE_FILES_H
#define TARNVOD_COMMAND_PAGE_FILES_H

#include <string_view>
#include <vector>

namespace tarn::command {

/** A file of the viewer's page. */
struct PageFile {
  std::string_view path;  ///< as requested: "/" for the page itself, "/main.js"
  std::string_view type;  ///< media type
  std::string_view text;
};

/** The viewer's page; the build generates it from the files in `viewer/page/`. Thread-safe. */
const std::vector<PageFile>& pageFiles();

}  // namespace tarn::command

#endif
