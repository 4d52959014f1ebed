// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#ifndef TARNVOD_COMMAND_UNIT_OPTIONS_H
#define TARNVOD_COMMAND_UNIT_OPTIONS_H

#include <cstdint>
#include <optional>
#include <string>

namespace CLI {
class App;
}

/** Options whose numbers have units. */
namespace tarn::command {

/** A time like "24h", "5m", "1.5s" or "200ms" (seconds without a unit), in microseconds; none for other texts or 0. */
std::optional<std::uint64_t> parseDuration(const std::string& text);

/** Adds an option that takes a time as `parseDuration` reads it. */
void addDuration(CLI::App& command, const std::string& name, std::optional<std::uint64_t>& microseconds,
                 const std::string& help);

/** Adds an option of a number of bytes, written "256M": with K, M or G for powers of 1024. */
void addByteSize(CLI::App& command, const std::string& name, std::optional<std::uint64_t>& bytes,
                 const std::string& help);

}  // namespace tarn::command

#endif
