// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#ifndef TARNVOD_COMMAND_RESOURCE_GROWTH_H
#define TARNVOD_COMMAND_RESOURCE_GROWTH_H

#include "rehearsal/application_run.h"

#include <cstdint>
#include <optional>
#include <string>

namespace tarn::command {

/** Less than this, in bytes, is not distinguished from frames that are under way when memory is measured. */
inline constexpr std::int64_t leastMemoryPerRound = 2048;

/**
 * How much of a resource each round of a run leaves behind: how much more there is in each of the last three rounds than
 * in each of the three in the middle. The first rounds do not count, because what is allocated only once is then.
 *
 * @param resource  the field of the marks
 * @param least     per round
 * @return none for less, and for runs of fewer than ten rounds
 */
std::optional<std::uint64_t> growthOf(const ApplicationRun& run, const std::string& resource, std::int64_t least);

}  // namespace tarn::command

#endif
