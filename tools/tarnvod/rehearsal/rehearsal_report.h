// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#ifndef TARNVOD_COMMAND_REHEARSAL_REPORT_H
#define TARNVOD_COMMAND_REHEARSAL_REPORT_H

#include "records/json.h"
#include "rehearsal/rehearsal.h"

#include <string>

namespace tarn::command {

/** The report for people, with its line end. */
std::string rehearsalText(const RehearsalSettings& settings, const RehearsalResult& result);

Json toJson(const RehearsalSettings& settings, const RehearsalResult& result);

/** One sentence: "Camera 1 is not set up again when, after 5 s, the service is down for 3 s." */
std::string sentenceOf(const ApplicationFailure& failure);

/** The command that runs the day again. */
std::string replayCommand(const RehearsalSettings& settings, const ApplicationFailure& failure);

/**
 * Writes, for each failure, a schedule that replays it and, where a test can show it, one against `<vod_host.h>`.
 *
 * @return their names
 */
std::vector<std::string> writeFailures(const std::string& folder, const RehearsalSettings& settings,
                                       const RehearsalResult& result);

}  // namespace tarn::command

#endif
