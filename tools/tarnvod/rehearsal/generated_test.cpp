// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "rehearsal/generated_test.h"

#include "base/text.h"
#include "rehearsal/fault_statements.h"
#include "rehearsal/generated_test_texts.h"
#include "rehearsal/rehearsal_report.h"
#include "rehearsal/resource_growth.h"

#include <fmt/format.h>

namespace tarn::command {
namespace {

using vod::schedule::Fault;
using vod::schedule::Step;
using vod::schedule::Time;

std::string with(std::string text, const std::string& value) {
  return text.replace(text.find('@'), 1, value);
}

/** Names come from the detector and may hold anything. */
std::string literal(const std::string& text) {
  std::string result = "\"";
  for (const char character : text) {
    const auto byte = static_cast<unsigned char>(character);
    const bool isPlain = byte >= ' ' && byte < 0x7f && character != '"' && character != '\\' && character != '?';
    // Three octal digits end an escape sequence, whatever follows.
    result += isPlain ? std::string(1, character) : fmt::format("\\{:03o}", byte);
  }
  return result + '"';
}

bool showsInAProcess(FindingKind kind) {
  switch (kind) {
    case FindingKind::Crash:
    case FindingKind::DoesNotEnd:
    case FindingKind::Blind:
    case FindingKind::ClassLost:
    case FindingKind::Blocks:
    case FindingKind::Storm:
    case FindingKind::Memory:
    case FindingKind::Threads:
    case FindingKind::Descriptors:
      return true;
    case FindingKind::NeverBegins:
    case FindingKind::Ends:
    case FindingKind::ExitCode:
    case FindingKind::Check:
    case FindingKind::Missing:
    case FindingKind::Forbidden:
      return false;
  }
  return false;
}

/** A test, or its parts, for one failure. */
class Test {
 public:
  Test(const RehearsalSettings& settings, const ApplicationFailure& failure)
      : settings_(settings),
        kind_(failure.finding.kind),
        schedule_(failure.schedule),
        cameras_(failure.expectation.cameras),
        statements_(cameras_) {}

  std::string declarations() const { return kind_ == FindingKind::ClassLost ? generated::receivedDeclaration : ""; }

  std::string check() const {
    switch (kind_) {
      case FindingKind::ClassLost:
        return generated::classCheck;
      case FindingKind::Blocks:
        return with(generated::blockCheck, std::to_string(settings_.limits.callback.count()));
      case FindingKind::Storm:
        return with(generated::stormCheck, std::to_string(settings_.limits.callsPerSecond));
      case FindingKind::DoesNotEnd:
        return with(generated::stopCheck, std::to_string(settings_.application.stopLimit.count()));
      case FindingKind::Memory:
        return generated::heapCount;
      case FindingKind::Threads:
        return with(generated::entryCount, "/proc/self/task");
      case FindingKind::Descriptors:
        return with(generated::entryCount, "/proc/self/fd");
      default:
        return {};
    }
  }

  std::string body() {
    std::string text = "  host::reset();\n" + each("detectors[@] = readDetector(@);");
    text += schedule_.rounds == 1 ? oneRound() : manyRounds();
    return text + (kind_ == FindingKind::DoesNotEnd ? "  expectQuickEnd();\n" : "  stopApplication();\n") +
           "  EXPECT_EQ(host::liveSubscribers(), 0);\n";
  }

 private:
  std::string oneRound() {
    std::string text;
    bool isStarted = false;
    for (const Step& step : stepsOf(schedule_.faults)) {
      if (!isStarted && !isBeforeStart(step)) {
        text += started();
        isStarted = true;
      }
      text += taken(step);
    }
    return text + (isStarted ? "" : started()) + recovered();
  }

  std::string manyRounds() {
    const std::string rounds = std::to_string(schedule_.rounds);
    const std::string marks = "  host::recordCalls(false);\n  std::vector<std::int64_t> marks;\n";
    std::string text =
        started() + (isGrowth(kind_) ? marks : "") + "  for (int round = 1; round <= " + rounds + "; ++round) {\n";
    Time last{0};
    for (const Step& step : stepsOf(schedule_.faults)) {
      text += (isGrowth(kind_) ? passing(step.at - last) : "") + taken(step);
      last = step.at;
    }
    text += recovered() + (isGrowth(kind_) ? "  marks.push_back(held());\n" : "") + "  }\n";
    return text + (isGrowth(kind_) ? growthCheck() : "");
  }

  /** What an application does while a fault lasts, such as to try again, is what may leave something behind. */
  static std::string passing(Time time) {
    return time == Time(0)
               ? ""
               : "  std::this_thread::sleep_for(std::chrono::milliseconds(" + std::to_string(time.count()) + "));\n";
  }

  /** What is allocated once, and at any time, is allocated in the first rounds. */
  std::string growthCheck() const {
    const auto least = kind_ == FindingKind::Memory ? leastMemoryPerRound : 1;
    const std::string half = std::to_string(schedule_.rounds / 2);
    return "  EXPECT_LT(marks.back() - marks[marks.size() - 1 - " + half + "], " + half + " * " +
           std::to_string(least) + ");\n";
  }

  /** What is wrong from the beginning; unless it keeps this thread, which starts the application, from going on. */
  bool isBeforeStart(const Step& step) const {
    const Fault& fault = schedule_.faults[step.fault];
    return step.at == Time(0) && step.begins && fault.kind != vod::schedule::Kind::Hang;
  }

  std::string started() const {
    return "\n  startApplication();\n" + (statements_.serviceAnswers() ? each("waitUntilSetUp(@);") : "");
  }

  std::string taken(const Step& step) {
    const Fault& fault = schedule_.faults[step.fault];
    const std::size_t number = step.fault + 1;
    return (step.begins ? statements_.begin(fault, number) : statements_.end(fault, number)) +
           (kind_ == FindingKind::Storm ? "  expectFewCalls();\n" : "");
  }

  std::string recovered() const {
    std::string text = "\n  // Every camera is set up again.\n" + each("waitUntilSetUp(@);");
    if (kind_ == FindingKind::Blocks) {
      text += each("expectQuickCallback(@, frame(@, 2, newObject()));") + each("expectQuickCallback(@, \"\");");
    } else if (kind_ == FindingKind::ClassLost) {
      text += receivedClasses();
    } else {
      text += "  host::drain();\n";
    }
    return text;
  }

  std::string receivedClasses() const {
    std::string text;
    for (const auto& [camera, classes] : cameras_) {
      for (const std::string& name : classes) {
        text += "  expectReceived(" + std::to_string(camera) + ", " + literal(name) + ");\n";
      }
    }
    return text;
  }

  std::string each(const std::string& statement) const {
    std::string text;
    for (const auto& [camera, classes] : cameras_) {
      text += "  " + withCamera(statement, camera) + "\n";
    }
    return text;
  }

  const RehearsalSettings& settings_;
  const FindingKind kind_;
  const vod::schedule::Schedule& schedule_;
  const CameraClasses& cameras_;
  FaultStatements statements_;
};

}  // namespace

std::optional<std::string> generatedTest(const RehearsalSettings& settings, const ApplicationFailure& failure) {
  if (!showsInAProcess(failure.finding.kind)) {
    return std::nullopt;
  }
  Test test(settings, failure);
  return "// Made by `tarnvod rehearse`. " + printable(sentenceOf(failure)) + "\n" + generated::includes +
         test.declarations() + generated::helpers + test.check() + "}  // namespace\n\nTEST(Rehearsal, Seed" +
         std::to_string(settings.seed) + "Day" + std::to_string(failure.day) + ") {\n" + test.body() + "}\n";
}

}  // namespace tarn::command
