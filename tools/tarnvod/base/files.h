// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#ifndef TARNVOD_COMMAND_FILES_H
#define TARNVOD_COMMAND_FILES_H

#include <string>
#include <string_view>

namespace tarn::command {

/**
 * The bytes of a regular file of at most 64 MB. Pipes and devices, which may never end, are refused.
 *
 * @throw Failure  that names the file and says what it should be
 */
std::string readFile(const std::string& path, const std::string& whatItShouldBe);

/** Writes a whole file. One that is there is replaced when the new one is complete. @throw Failure that names it */
void writeFile(const std::string& path, std::string_view contents);

}  // namespace tarn::command

#endif
