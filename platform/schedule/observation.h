// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#ifndef VOD_SCHEDULE_OBSERVATION_H
#define VOD_SCHEDULE_OBSERVATION_H

#include "schedule/schedule.h"

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>

namespace vod::schedule {

/**
 * Something that the host platform observed of an application while it executed a schedule. Written as one line:
 * `4711 5200 subscribed camera=1 subscriber=3`.
 */
struct Observation {
  /** The process that was observed. */
  int process = 0;
  /** Since the schedule began. */
  Time at{0};
  std::string event;
  std::map<std::string, std::string> fields;

  /** The field as a number; 0 if there is none. */
  std::int64_t number(const std::string& field) const;
  /** The field as a text; empty if there is none. */
  std::string text(const std::string& field) const;
};

/** With its end. Values may hold any bytes. */
std::string toLine(const Observation& observation);

/**
 * Reads one line of the journal.
 *
 * @param line  without its line break
 * @return nothing when the line is not an observation
 */
std::optional<Observation> parseObservation(std::string_view line);

}  // namespace vod::schedule

#endif
