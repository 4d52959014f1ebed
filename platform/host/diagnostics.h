// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#ifndef VOD_HOST_DIAGNOSTICS_H
#define VOD_HOST_DIAGNOSTICS_H

#include <string>

namespace vod::host {

/** Tells the developer, on one line of standard error, what is wrong. */
void report(const std::string& what);

/** The same for an exception that ends a call: takes no memory. */
void reportFailure(const char* function, const char* what) noexcept;

}  // namespace vod::host

#endif
