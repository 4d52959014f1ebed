// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#ifndef TARNVOD_COMMAND_VIEW_PAGE_H
#define TARNVOD_COMMAND_VIEW_PAGE_H

#include <string_view>

namespace tarn::command {

/** Stands in the page where each answer puts a nonce of its own. */
inline constexpr std::string_view noncePlaceholder = "@NONCE@";

/** The viewer's page with its style and its script; the build makes it of the files in `viewer/page/`. */
extern const std::string_view viewPage;

}  // namespace tarn::command

#endif
