// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#ifndef TARNVOD_COMMAND_OPTIONS_H
#define TARNVOD_COMMAND_OPTIONS_H

#include <array>
#include <chrono>
#include <cstdint>
#include <optional>
#include <string>

namespace CLI {
class App;
class Option;
}  // namespace CLI

/** Options that several subcommands share. */
namespace tarn::command {

/** When a subcommand ends without being asked to; with neither, only a signal ends it. */
struct Limits {
  std::optional<std::uint64_t> frames;
  std::optional<double> seconds;

  bool reachedBy(std::chrono::steady_clock::duration elapsed) const;
};

void addLimits(CLI::App& command, Limits& limits, const std::string& framesHelp);

/** Adds an option of four numbers, written "A,B,C,D". */
CLI::Option* addFourNumbers(CLI::App& command, const std::string& name, std::optional<std::array<float, 4>>& numbers,
                            const std::string& help);

/** Adds `--aspect`, the width by height of what the camera sees, written "4:3" or as a number. */
void addAspect(CLI::App& command, std::optional<double>& aspect);

/** Makes an option accept camera numbers: 1 and above. */
void takesCameraNumbers(CLI::Option& option);

/** Makes an option accept a frame's number or a count of frames: 1 and above. */
void takesFrameNumbers(CLI::Option& option);

}  // namespace tarn::command

#endif
