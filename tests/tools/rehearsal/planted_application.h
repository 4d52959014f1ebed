// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#ifndef TARNVOD_TEST_PLANTED_APPLICATION_H
#define TARNVOD_TEST_PLANTED_APPLICATION_H

#include "process.h"

#include <nlohmann/json.hpp>

#include <string>
#include <vector>

namespace test {

/** `tarnvod rehearse --json` with the application planted/NAME.cpp. */
Outcome rehearsePlanted(const std::string& name, const std::vector<std::string>& options);

/** The failure of this kind, on the first day that fails of at most a hundred; fails the test if there is none. */
nlohmann::json failureOf(const std::string& name, const std::string& kind);

}  // namespace test

#endif
