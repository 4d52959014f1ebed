// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "schedule/schedule.h"

#include <algorithm>
#include <array>
#include <tuple>

namespace vod::schedule {

namespace {

/** In the order of the enumeration. */
constexpr std::array<Form, std::size(everyKind)> forms = {{
    {Kind::Down, "down", false, false, true},
    {Kind::Drop, "drop", false, true, false},
    {Kind::Refuse, "refuse", true, false, true},
    {Kind::Hang, "hang", true, false, true},
    {Kind::Silence, "silence", false, true, true},
    {Kind::Burst, "burst", false, true, false},
    {Kind::Damage, "damage", false, true, true},
    {Kind::Empty, "empty", false, true, true},
    {Kind::Repeat, "repeat", false, true, true},
    {Kind::Jump, "jump", false, true, false},
    {Kind::Lose, "lose", false, true, true},
    {Kind::Renumber, "renumber", false, true, true},
    {Kind::Change, "change", false, true, false},
}};

auto members(const Fault& fault) {
  return std::tie(fault.kind, fault.at, fault.duration, fault.function, fault.camera, fault.count, fault.jump);
}

}  // namespace

const Form& formOf(Kind kind) {
  return forms.at(static_cast<std::size_t>(kind));
}

bool operator==(const Fault& left, const Fault& right) {
  return members(left) == members(right);
}

bool operator==(const Schedule& left, const Schedule& right) {
  return std::tie(left.rounds, left.length, left.faults) == std::tie(right.rounds, right.length, right.faults);
}

std::vector<Step> stepsOf(const std::vector<Fault>& faults) {
  std::vector<Step> steps;
  for (std::size_t fault = 0; fault < faults.size(); ++fault) {
    steps.push_back({faults[fault].at, fault, true});
    if (formOf(faults[fault].kind).hasDuration) {
      steps.push_back({faults[fault].end(), fault, false});
    }
  }
  std::stable_sort(steps.begin(), steps.end(), [](const Step& left, const Step& right) { return left.at < right.at; });
  return steps;
}

}  // namespace vod::schedule
