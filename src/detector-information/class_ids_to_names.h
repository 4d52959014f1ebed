// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#ifndef TARNVOD_CLASS_IDS_TO_NAMES_H
#define TARNVOD_CLASS_IDS_TO_NAMES_H

#include <tarnvod/detector_information.h>

#include <map>
#include <set>
#include <string>

namespace tarn::VOD {

/**
 * The same as `Classifications::getClassIdsToNamesMap`, but throws `std::bad_alloc` when memory runs out: for callers
 * inside the library, which survive that.
 */
std::map<int, std::string> mapClassIdsToNames(const Classifications& classifications,
                                              const std::set<std::string>& names);

}  // namespace tarn::VOD

#endif
