// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#ifndef TARNVOD_TESTS_ENDURANCE_CAMPAIGN_TEST_DATA_H
#define TARNVOD_TESTS_ENDURANCE_CAMPAIGN_TEST_DATA_H

#include <cstdint>
#include <functional>
#include <string>

namespace tarn::test {

/** Where the decisions of a schedule come from, a seed or a fuzzer's input: a number from 0 to one below the bound. */
using Choose = std::function<std::uint32_t(std::uint32_t bound)>;

/** A detector with names of both kinds for its attributes. All names contain the number of their camera. */
std::string plainDetector(int camera);

/** Detector information: mostly sound, sometimes with names twice, without attributes, damaged or none at all. */
std::string anyDetector(const Choose& choose, int camera);

/** A scene: mostly sound, sometimes empty, of unknown ids or cut off. Its boxes lie in the middle of the picture. */
std::string anyScene(const Choose& choose);

}  // namespace tarn::test

#endif
