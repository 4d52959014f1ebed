// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#ifndef VOD_HOST_REPLAY_ENVIRONMENT_H
#define VOD_HOST_REPLAY_ENVIRONMENT_H

#include <vod_host.h>

#include <string>
#include <vector>

namespace vod::host {

/** What the service serves when nobody configures it: one folder for each channel. */
struct Environment {
  std::vector<std::string> folders;
  Replay replay;
};

/**
 * Reads the environment variables.
 *
 * @throw std::invalid_argument  for a wrong value: one line that names the variable, the value and what it may be
 */
Environment readEnvironment();

}  // namespace vod::host

#endif
