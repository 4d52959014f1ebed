// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "schedule/schedule.h"

#include <vod_host_calls.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>

namespace vod::schedule {

namespace {

using namespace std::chrono_literals;

constexpr Time longestDay = 24h;
/** A call that hangs is failed by the host platform after `waitTimeout`. */
constexpr Time longestHang = 20s;
constexpr Time longestJump = 1000h;
constexpr int mostRounds = 1000;
constexpr int mostScenes = 10'000;
constexpr int mostCameras = 1000;
constexpr int mostClasses = 1000;
constexpr int mostCalls = 1000;
constexpr std::size_t mostFaults = 10'000;

#define NAME(enumerator, function) #function,
constexpr std::array functions = {VOD_HOST_FUNCTIONS(NAME)};
#undef NAME

/** Whether the word is the name of a C function without a prefix that they share. */
bool isFunction(std::string_view word) {
  return std::any_of(functions.begin(), functions.end(), [word](std::string_view name) {
    for (const std::string_view prefix : {"video_object_detection_subscriber_", "video_object_detection_"}) {
      if (name.substr(0, prefix.size()) == prefix) {
        return name.substr(prefix.size()) == word;
      }
    }
    return false;
  });
}

/** The words of one line, from left to right. */
class Line {
 public:
  Line(std::string_view text, std::string name, int number)
      : text_(text.substr(0, text.find('#'))), name_(std::move(name)), number_(number) {
    findWord();
  }

  bool isAtEnd() const { return word_.empty(); }

  /** Goes on to the next word if this one is the given one. */
  bool accepts(std::string_view word) {
    if (word_ != word) {
      return false;
    }
    goOn();
    return true;
  }

  void expect(std::string_view word) {
    if (!accepts(word)) {
      fail('"' + std::string(word) + '"');
    }
  }

  int number(int most) {
    int value = 0;
    const auto [end, error] = std::from_chars(word_.data(), word_.data() + word_.size(), value);
    if (isAtEnd() || error != std::errc() || end != word_.data() + word_.size() || value < 1 || value > most) {
      fail("a number from 1 to " + std::to_string(most));
    }
    goOn();
    return value;
  }

  Time time(Time least, Time most) {
    double value = 0;
    const auto [end, error] = std::from_chars(word_.data(), word_.data() + word_.size(), value);
    const double unit = unitOf(word_.substr(static_cast<std::size_t>(end - word_.data())));
    const double milliseconds = std::round(value * unit);
    const bool isInRange = milliseconds >= static_cast<double>(least.count()) &&  // false if it is not a number
                           milliseconds <= static_cast<double>(most.count());
    if (isAtEnd() || error != std::errc() || unit == 0 || !isInRange) {
      fail("a time from " + toText(least) + " to " + toText(most) + R"(, such as "1.5s", "200ms", "2m" or "1h")");
    }
    goOn();
    return Time(static_cast<Time::rep>(milliseconds));
  }

  std::string function() {
    if (!isFunction(word_)) {
      fail(R"(a function of the platform, such as "subscribe" or "get_information")");
    }
    std::string name(word_);
    goOn();
    return name;
  }

  Kind kind() {
    const auto* const found = std::find_if(std::begin(everyKind), std::end(everyKind),
                                           [this](Kind kind) { return formOf(kind).word == word_; });
    if (found == std::end(everyKind)) {
      std::string words;
      for (const Kind kind : everyKind) {
        words += (words.empty() ? "" : ", ") + std::string(formOf(kind).word);
      }
      fail("one of " + words);
    }
    goOn();
    return *found;
  }

  void requireEnd() const {
    if (!isAtEnd()) {
      fail("the end of the line");
    }
  }

  [[noreturn]] void fail(const std::string& expected) const {
    throw ScheduleError(name_ + ':' + std::to_string(number_) + ':' + std::to_string(begin_ + 1) + ": expected " +
                        expected + ", got " + (isAtEnd() ? "the end of the line" : '"' + std::string(word_) + '"'));
  }

 private:
  static double unitOf(std::string_view unit) {
    return unit == "ms" ? 1 : unit == "s" ? 1e3 : unit == "m" ? 60e3 : unit == "h" ? 3600e3 : 0;
  }

  void goOn() {
    begin_ += word_.size();
    findWord();
  }

  void findWord() {
    constexpr std::string_view blanks = " \t\r";
    begin_ = std::min(text_.find_first_not_of(blanks, begin_), text_.size());
    word_ = text_.substr(begin_, text_.find_first_of(blanks, begin_) - begin_);
  }

  const std::string_view text_;
  const std::string name_;
  const int number_;
  std::size_t begin_ = 0;
  std::string_view word_;
};

Time durationOf(Line& line, Kind kind) {
  line.expect("for");
  return line.time(Time(1), kind == Kind::Hang ? longestHang : longestDay);
}

Fault parseFault(Line& line) {
  Fault fault;
  fault.at = line.time(Time(0), longestDay);
  fault.kind = line.kind();
  const Form& form = formOf(fault.kind);
  if (form.hasFunction) {
    fault.function = line.function();
  }
  if (fault.kind == Kind::Refuse && line.accepts("call")) {
    fault.count = line.number(mostCalls);
  }
  if (fault.kind == Kind::Lose) {
    line.expect("class");
    fault.count = line.number(mostClasses);
  }
  if (fault.kind == Kind::Change) {
    line.expect("classes");
  }
  if (form.hasCamera && line.accepts("camera")) {
    fault.camera = line.number(mostCameras);
  }
  if (fault.kind == Kind::Burst) {
    line.expect("of");
    fault.count = line.number(mostScenes);
  }
  if (fault.kind == Kind::Jump) {
    line.expect("by");
    fault.jump = line.time(-longestJump, longestJump);
  }
  if (form.hasDuration) {
    fault.duration = durationOf(line, fault.kind);
  }
  return fault;
}

/** A fault with the line that it stands on. */
struct Placed {
  Fault fault;
  int line;
};

void requireThatAllEnd(const std::vector<Placed>& faults, Time length, const std::string& name) {
  for (const Placed& placed : faults) {
    if (placed.fault.end() > length) {
      throw ScheduleError(name + ':' + std::to_string(placed.line) + ":1: the fault ends at " +
                          toText(placed.fault.end()) + ", after the schedule's length of " + toText(length));
    }
  }
}

void parseLine(Line& line, int number, Schedule& schedule, std::vector<Placed>& faults) {
  if (line.isAtEnd()) {
    return;
  }
  if (line.accepts("length")) {
    schedule.length = line.time(Time(1), longestDay);
  } else if (line.accepts("rounds")) {
    schedule.rounds = line.number(mostRounds);
  } else if (faults.size() < mostFaults && line.accepts("at")) {
    faults.push_back({parseFault(line), number});
  } else {
    line.fail(faults.size() < mostFaults ? R"("at", "length" or "rounds")"
                                         : "at most " + std::to_string(mostFaults) + " faults");
  }
  line.requireEnd();
}

}  // namespace

Schedule parse(std::string_view text, const std::string& name) {
  Schedule schedule;
  std::vector<Placed> faults;
  int number = 0;
  for (std::size_t begin = 0; begin < text.size();) {
    const std::size_t end = std::min(text.find('\n', begin), text.size());
    Line line(text.substr(begin, end - begin), name, ++number);
    parseLine(line, number, schedule, faults);
    begin = end + 1;
  }
  requireThatAllEnd(faults, schedule.length, name);
  std::stable_sort(faults.begin(), faults.end(),
                   [](const Placed& left, const Placed& right) { return left.fault.at < right.fault.at; });
  for (Placed& placed : faults) {
    schedule.faults.push_back(std::move(placed.fault));
  }
  return schedule;
}

}  // namespace vod::schedule
