// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#ifndef TARNVOD_COMMAND_SHRINKING_H
#define TARNVOD_COMMAND_SHRINKING_H

#include <schedule/schedule.h>

#include <functional>
#include <vector>

namespace tarn::command {

/**
 * Looks for the fewest faults that still fail, by delta debugging: none of those that are left can be left out.
 *
 * @param faults  that fail
 * @param fails   tries some of them, in their order
 * @param most    how often it may try; the best that has been found by then is the result
 */
std::vector<vod::schedule::Fault> shrink(std::vector<vod::schedule::Fault> faults,
                                         const std::function<bool(const std::vector<vod::schedule::Fault>&)>& fails,
                                         int most);

}  // namespace tarn::command

#endif
