// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#ifndef TARNVOD_COMMAND_ENVELOPE_H
#define TARNVOD_COMMAND_ENVELOPE_H

#include <cstdint>
#include <string>

namespace tarn::command {

/** Name and version of the JSON schema of frames. Fields are only ever added within a version. */
inline constexpr const char* frameSchema = "tarnvod.frame/1";

/** One start of a publisher on one device. */
struct Origin {
  std::string site;
  std::string device;
  std::string start;  ///< different at each start of the publisher; 16 hexadecimal digits
};

/** What identifies a frame in a fleet, and when it came. */
struct Envelope {
  int camera = 0;              ///< counted from 1
  std::uint64_t sequence = 0;  ///< counted from 1, for each camera and start; without gaps
  std::int64_t arrival = 0;    ///< by the wall clock, microseconds since 1970-01-01 UTC
  bool clockSet = false;       ///< whether the system says that its clock is synchronized
};

}  // namespace tarn::command

#endif
