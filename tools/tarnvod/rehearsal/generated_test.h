// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#ifndef TARNVOD_COMMAND_GENERATED_TEST_H
#define TARNVOD_COMMAND_GENERATED_TEST_H

#include "rehearsal/rehearsal.h"

#include <string>

namespace tarn::command {

/**
 * A test for GoogleTest that brings about the failure's faults in their order, through `<vod_host.h>`. The application
 * provides two functions, which start and end what is tested.
 */
std::string generatedTest(const RehearsalSettings& settings, const ApplicationFailure& failure);

}  // namespace tarn::command

#endif
