// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#ifndef TARNVOD_COMMAND_DAY_H
#define TARNVOD_COMMAND_DAY_H

#include <schedule/schedule.h>

#include <cstdint>

namespace tarn::command {

/**
 * Draws what goes wrong on a day: the same for the same numbers, on every machine.
 *
 * @param patience  how long after the last fault the day, or each of its rounds, goes on
 */
vod::schedule::Schedule drawDay(std::uint64_t seed, std::uint64_t day, vod::schedule::Time patience);

/** A day on which nothing goes wrong. */
vod::schedule::Schedule quietDay(vod::schedule::Time patience);

}  // namespace tarn::command

#endif
