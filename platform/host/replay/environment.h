// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#ifndef VOD_HOST_REPLAY_ENVIRONMENT_H
#define VOD_HOST_REPLAY_ENVIRONMENT_H

#include <vod_host.h>

#include <optional>
#include <string>
#include <vector>

namespace vod::host {

/** The folders of recordings that are played together, one for each channel. */
using PlayedTogether = std::vector<std::string>;

/** What the service serves by default. */
struct Environment {
  /** In the order of the channels. */
  std::vector<PlayedTogether> streams;
  Replay replay;

  /** One folder for each channel. */
  std::vector<std::string> folders() const;
};

/** Where the lines go that are written to the system log. */
enum class LogDestination { SystemLog, SystemLogAndStandardError };

/**
 * Reads the environment variable that chooses where the log goes.
 *
 * @return none when it is not set
 * @throw std::invalid_argument  as `readEnvironment`
 */
std::optional<LogDestination> readLogDestination();

/**
 * Reads the environment variables that choose what is served, and checks all of them.
 *
 * @throw std::invalid_argument  for an invalid value; the text names the variable, its value and the values allowed
 */
Environment readEnvironment();

/** The files of a rehearsal; none of them is set otherwise. */
struct RehearsalFiles {
  /** The schedule that is executed instead of playing the recordings. */
  std::optional<std::string> schedule;
  /** The file or pipe that receives what is observed of the application. */
  std::optional<std::string> journal;
};

/** @throw std::invalid_argument  as `readEnvironment` */
RehearsalFiles readRehearsalFiles();

}  // namespace vod::host

#endif
