// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#ifndef TARNVOD_COMMAND_ASSIGNMENT_H
#define TARNVOD_COMMAND_ASSIGNMENT_H

#include <cstddef>
#include <utility>
#include <vector>

namespace tarn::command {

/** The gain of giving a column to a row; 0 where it must not be. */
using GainMatrix = std::vector<std::vector<double>>;

/**
 * Gives each row at most one column and each column to at most one row, such that the sum of the gains is the greatest.
 * Pairs without a gain are left out. Takes time with the cube of the greater side.
 */
std::vector<std::pair<std::size_t, std::size_t>> bestAssignment(const GainMatrix& gains);

}  // namespace tarn::command

#endif
