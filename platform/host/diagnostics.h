// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#ifndef VOD_HOST_DIAGNOSTICS_H
#define VOD_HOST_DIAGNOSTICS_H

#include <vod_host.h>

#include <map>
#include <string>

namespace vod::host {

/** Prints an error for the developer, on one line of standard error. */
void report(const std::string& what);

/** The same for an exception that ends a call; allocates nothing. */
void reportFailure(const char* function, const char* what) noexcept;

/**
 * The errors of one channel. Each is reported when it occurs first, and not again while calls of the same function keep
 * failing for the same reason: an application that retries every second does not fill the terminal. Not thread-safe.
 */
class ChannelErrors {
 public:
  void failed(Function function, const std::string& what);
  void succeeded(Function function) { reported_.erase(function); }

 private:
  std::map<Function, std::string> reported_;
};

}  // namespace vod::host

#endif
