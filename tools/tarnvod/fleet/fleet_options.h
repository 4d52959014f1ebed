// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#ifndef TARNVOD_COMMAND_FLEET_OPTIONS_H
#define TARNVOD_COMMAND_FLEET_OPTIONS_H

#include <string>

namespace CLI {
class App;
class Option;
}  // namespace CLI

namespace tarn::command {

/** Adds an option that takes a name as `isFleetName` accepts it. */
CLI::Option* addFleetName(CLI::App& command, const std::string& option, std::string& name, const std::string& help);

/** A text that differs from start to start: 16 hexadecimal digits. */
std::string newStartId();

}  // namespace tarn::command

#endif
