// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "schedule/schedule.h"

namespace vod::schedule {

namespace {

/** For people: "3 s", "1.5 s". */
std::string spoken(Time time) {
  const auto milliseconds = time.count();
  std::string text = std::to_string(milliseconds / 1000);
  if (const auto rest = milliseconds % 1000; rest != 0) {
    std::string digits = std::to_string(1000 + rest).substr(1);
    digits.erase(digits.find_last_not_of('0') + 1);
    text += '.' + digits;
  }
  return text + " s";
}

std::string cameras(const Fault& fault) {
  return fault.camera ? "camera " + std::to_string(*fault.camera) : "all cameras";
}

std::string happening(const Fault& fault) {
  switch (fault.kind) {
    case Kind::Down:
      return "the service is down";
    case Kind::Drop:
      return "the service ends the subscriptions of " + cameras(fault);
    case Kind::Refuse:
      return (fault.count > 0 ? "call " + std::to_string(fault.count) + " of " : "") + "the platform's function " +
             fault.function + " fails";
    case Kind::Hang:
      return "the platform's function " + fault.function + " does not return";
    case Kind::Silence:
      return "no frames of " + cameras(fault) + " arrive";
    case Kind::Burst:
      return std::to_string(fault.count) + " frames of " + cameras(fault) + " arrive at once";
    case Kind::Damage:
      return "the frames of " + cameras(fault) + " are damaged";
    case Kind::Empty:
      return "the frames of " + cameras(fault) + " have no detections";
    case Kind::Repeat:
      return "the time stamps of " + cameras(fault) + " stand still";
    case Kind::Jump:
      return "the time stamps of " + cameras(fault) + " jump by " +
             (fault.jump.count() < 0 ? "-" + spoken(-fault.jump) : spoken(fault.jump));
    case Kind::Lose:
      return "the detector of " + cameras(fault) + " restarts without class " + std::to_string(fault.count);
    case Kind::Renumber:
      return "the objects of " + cameras(fault) + " get new ids in every frame";
    case Kind::Change:
      return "the detector of " + cameras(fault) + " restarts with other ids for its classes";
  }
  return {};
}

}  // namespace

std::string toText(Time time) {
  const auto milliseconds = time.count();
  return milliseconds % 1000 == 0 ? std::to_string(milliseconds / 1000) + "s" : std::to_string(milliseconds) + "ms";
}

std::string toText(const Fault& fault) {
  const Form& form = formOf(fault.kind);
  std::string text = "at " + toText(fault.at) + ' ' + form.word;
  if (form.hasFunction) {
    text += ' ' + fault.function;
  }
  if (fault.kind == Kind::Refuse && fault.count > 0) {
    text += " call " + std::to_string(fault.count);
  }
  if (fault.kind == Kind::Lose) {
    text += " class " + std::to_string(fault.count);
  }
  if (fault.kind == Kind::Change) {
    text += " classes";
  }
  if (form.hasCamera && fault.camera) {
    text += " camera " + std::to_string(*fault.camera);
  }
  if (fault.kind == Kind::Burst) {
    text += " of " + std::to_string(fault.count);
  }
  if (fault.kind == Kind::Jump) {
    text += " by " + toText(fault.jump);
  }
  if (form.hasDuration) {
    text += " for " + toText(fault.duration);
  }
  return text;
}

std::string toText(const Schedule& schedule) {
  std::string text = "length " + toText(schedule.length) + '\n';
  if (schedule.rounds != 1) {
    text += "rounds " + std::to_string(schedule.rounds) + '\n';
  }
  for (const Fault& fault : schedule.faults) {
    text += toText(fault) + '\n';
  }
  return text;
}

std::string sentence(const Fault& fault) {
  const bool lasts = formOf(fault.kind).hasDuration && !(fault.kind == Kind::Refuse && fault.count > 0);
  return happening(fault) + (lasts ? " for " + spoken(fault.duration) : "");
}

}  // namespace vod::schedule
