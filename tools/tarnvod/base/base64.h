// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#ifndef TARNVOD_COMMAND_BASE64_H
#define TARNVOD_COMMAND_BASE64_H

#include <string>
#include <string_view>

namespace tarn::command {

/** Bytes as text, with padding. */
std::string base64(std::string_view bytes);

}  // namespace tarn::command

#endif
