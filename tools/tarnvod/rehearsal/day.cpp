// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "rehearsal/day.h"

#include <algorithm>
#include <array>
#include <iterator>
#include <random>
#include <vector>

namespace tarn::command {
namespace {

using namespace std::chrono_literals;
using vod::schedule::Fault;
using vod::schedule::Kind;
using vod::schedule::Schedule;
using vod::schedule::Time;

/** Rounds of a day that shows whether something is left each time. */
constexpr int manyRounds = 10;
constexpr int quietRounds = 3;

/** Random choices; without the distributions of the library, which differ from one to the next. */
class Dice {
 public:
  Dice(std::uint64_t seed, std::uint64_t day) {
    std::seed_seq sequence{seed & 0xffffffffU, seed >> 32U, day & 0xffffffffU, day >> 32U};
    generator_.seed(sequence);
  }

  int between(int least, int most) {
    return least + static_cast<int>(generator_() % static_cast<std::uint64_t>(most - least + 1));
  }
  bool oneIn(int count) { return between(1, count) == 1; }
  /** In tenths of a second. */
  Time between(Time least, Time most) {
    return 100ms * between(static_cast<int>(least / 100ms), static_cast<int>(most / 100ms));
  }
  template <typename Choices>
  const auto& choose(const Choices& choices) {
    return choices[static_cast<std::size_t>(between(0, static_cast<int>(std::size(choices)) - 1))];
  }

 private:
  std::mt19937_64 generator_;
};

/** Outages are the most frequent. */
constexpr std::array kinds = {Kind::Down, Kind::Down,    Kind::Down,     Kind::Drop,   Kind::Drop,  Kind::Refuse,
                              Kind::Hang, Kind::Silence, Kind::Burst,    Kind::Damage, Kind::Empty, Kind::Repeat,
                              Kind::Jump, Kind::Lose,    Kind::Renumber, Kind::Change};
constexpr std::array functions = {"create",
                                  "subscribe",
                                  "get_information",
                                  "set_get_detection_callback",
                                  "set_teardown_callback",
                                  "set_receive_empty_hits",
                                  "delete"};
constexpr std::array<Time, 5> jumps = {-1h, -5s, 5s, 1h, 24h};

/** Seconds; seldom minutes, and for a service that is down, hours; but not in each round of a day, which is to end within minutes. */
Time drawDuration(Kind kind, bool repeats, Dice& dice) {
  if (!dice.oneIn(30)) {
    return dice.between(500ms, 8s);
  }
  return kind == Kind::Down && dice.oneIn(4) && !repeats ? dice.between(1h, 2h) : dice.between(30s, 120s);
}

Fault drawFault(Dice& dice, bool repeats) {
  const Time latest = repeats ? 6s : 20s;
  Fault fault;
  fault.kind = dice.choose(kinds);
  const auto& form = formOf(fault.kind);
  // From the beginning, as a service that starts late, or at some time.
  fault.at = dice.oneIn(8) ? Time(0) : dice.between(2s, latest);
  if (form.hasFunction) {
    fault.function = dice.choose(functions);
  }
  if (form.hasCamera && dice.oneIn(2)) {
    fault.camera = dice.between(1, 2);
  }
  if (form.hasDuration) {
    fault.duration = fault.kind == Kind::Hang ? dice.between(500ms, 8s) : drawDuration(fault.kind, repeats, dice);
  }
  fault.count = fault.kind == Kind::Burst ? dice.between(10, 2000) : fault.kind == Kind::Lose ? dice.between(1, 3) : 0;
  if (fault.kind == Kind::Jump) {
    fault.jump = dice.choose(jumps);
  }
  return fault;
}

/** A function that fails or hangs matters only while it is called: after a drop. */
void addDropFor(const Fault& fault, Dice& dice, std::vector<Fault>& faults) {
  if (formOf(fault.kind).hasFunction && !dice.oneIn(3)) {
    Fault drop;
    drop.kind = Kind::Drop;
    drop.at = fault.at + 100ms;
    faults.push_back(drop);
  }
}

/**
 * A call that hangs while the detector changes its classes would leave a subscription with the old ones behind, which no application could
 * find out.
 */
void dropChangesDuringHanging(std::vector<Fault>& faults) {
  std::vector<Fault> hanging;
  std::copy_if(faults.begin(), faults.end(), std::back_inserter(hanging),
               [](const Fault& fault) { return fault.kind == Kind::Hang; });
  const auto isDuringOne = [&hanging](const Fault& change) {
    return change.kind == Kind::Change && std::any_of(hanging.begin(), hanging.end(), [&change](const Fault& hang) {
             return hang.at <= change.at && change.at <= hang.end();
           });
  };
  faults.erase(std::remove_if(faults.begin(), faults.end(), isDuringOne), faults.end());
}

}  // namespace

Schedule drawDay(std::uint64_t seed, std::uint64_t day, Time patience) {
  Dice dice(seed, day);
  Schedule schedule;
  const bool repeats = dice.oneIn(4);
  schedule.rounds = repeats ? manyRounds : 1;
  const bool isQuiet = dice.oneIn(10);
  const int count = isQuiet ? 0 : repeats ? dice.between(1, 2) : dice.between(1, 6);
  for (int i = 0; i < count; ++i) {
    const Fault fault = drawFault(dice, repeats);
    schedule.faults.push_back(fault);
    addDropFor(fault, dice, schedule.faults);
  }
  dropChangesDuringHanging(schedule.faults);
  std::stable_sort(schedule.faults.begin(), schedule.faults.end(),
                   [](const Fault& left, const Fault& right) { return left.at < right.at; });
  schedule.length = 0s;
  for (const Fault& fault : schedule.faults) {
    schedule.length = std::max(schedule.length, fault.end());
  }
  schedule.length += patience;
  return schedule;
}

Schedule quietDay(Time patience) {
  Schedule schedule;
  schedule.rounds = quietRounds;
  schedule.length = patience;
  return schedule;
}

}  // namespace tarn::command
