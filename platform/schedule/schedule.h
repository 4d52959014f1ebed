// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

/**
 * @file
 * Schedules: what goes wrong with the service, and when. A schedule is a text with one fault on each line:
 *
 * @code
 * # The service stops, and its detector comes back without its first class.
 * length 40s
 * at 5s down for 3s
 * at 12s lose class 1 for 5s
 * @endcode
 */

#ifndef VOD_SCHEDULE_SCHEDULE_H
#define VOD_SCHEDULE_SCHEDULE_H

#include <chrono>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace vod::schedule {

/** Times are those of the application, which may pass faster than real ones. */
using Time = std::chrono::milliseconds;

/** What can go wrong. */
enum class Kind {
  Down,      ///< the service is down
  Drop,      ///< subscriptions end, although the service is up
  Refuse,    ///< a function of the platform fails
  Hang,      ///< a function of the platform does not return before the fault ends
  Silence,   ///< no scenes are sent
  Burst,     ///< many scenes are sent at once
  Damage,    ///< scenes are cut off, garbled or of no bytes
  Empty,     ///< scenes have no detections
  Repeat,    ///< the time stamp does not advance
  Jump,      ///< from now on all time stamps are later or earlier
  Lose,      ///< the detector restarts without a class, and again with it at the end
  Renumber,  ///< the detector gives each object a new id in every scene
  Change,    ///< the detector restarts with other ids for its classes, and keeps them
};

/** All kinds, in the order of the enumeration. */
inline constexpr Kind everyKind[] = {Kind::Down,  Kind::Drop,     Kind::Refuse, Kind::Hang,   Kind::Silence,
                                     Kind::Burst, Kind::Damage,   Kind::Empty,  Kind::Repeat, Kind::Jump,
                                     Kind::Lose,  Kind::Renumber, Kind::Change};

/** What the line of a kind consists of. */
struct Form {
  Kind kind;
  const char* word;
  bool hasFunction;
  bool hasCamera;
  bool hasDuration;
};
const Form& formOf(Kind kind);

/** One fault. Members that its kind does not have keep their defaults. */
struct Fault {
  Kind kind = Kind::Down;
  /** Since the round began. */
  Time at{0};
  Time duration{0};
  /** The C name without its prefix, such as "get_information". */
  std::string function;
  /** Counted from 1; none for all of them. */
  std::optional<int> camera;
  /** Scenes of a burst; of a lost class, its place in the detector's list, from 1; the refused call, from 1, 0 for all. */
  int count = 0;
  /** Of a jump; may be negative. */
  Time jump{0};

  Time end() const { return at + duration; }
};
bool operator==(const Fault& left, const Fault& right);

/** Faults in the order of their times; `rounds` times, one after the other. */
struct Schedule {
  int rounds = 1;
  /** Of one round; no fault ends later. */
  Time length{std::chrono::seconds(30)};
  std::vector<Fault> faults;
};
bool operator==(const Schedule& left, const Schedule& right);

/** The beginning or the end of a fault. */
struct Step {
  Time at;
  /** Its place in the schedule's list. */
  std::size_t fault;
  bool begins;
};

/** What happens in one round, in the order of the times. A fault without a duration has no end. */
std::vector<Step> stepsOf(const std::vector<Fault>& faults);

/** The text is not a schedule; `what` is one line with its name, the line and column, the expected and the actual text. */
class ScheduleError : public std::runtime_error {
  using std::runtime_error::runtime_error;
};

/**
 * Reads a schedule.
 *
 * @param name  of the text, for errors
 * @throw ScheduleError  for the first mistake
 */
Schedule parse(std::string_view text, const std::string& name);

/** The schedule as `parse` reads it. */
std::string toText(const Schedule& schedule);
/** One line, without its end: "at 5s down for 3s". */
std::string toText(const Fault& fault);
/** "5s", "1500ms", "-3600s". */
std::string toText(Time time);

/** What happens, for people: "the service is down for 3 s". */
std::string sentence(const Fault& fault);

}  // namespace vod::schedule

#endif
