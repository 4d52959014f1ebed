// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#ifndef TARNVOD_COMMAND_GENERATED_TEST_H
#define TARNVOD_COMMAND_GENERATED_TEST_H

#include "rehearsal/rehearsal.h"

#include <optional>
#include <string>

namespace tarn::command {

/**
 * A test for GoogleTest that brings about the failure's faults in their order, through `<vod_host.h>`, and fails as long
 * as the application has the mistake. The application provides two functions, which start and end what is tested.
 *
 * @return nothing for a failure that only shows in the output or the exit code of a program
 */
std::optional<std::string> generatedTest(const RehearsalSettings& settings, const ApplicationFailure& failure);

}  // namespace tarn::command

#endif
