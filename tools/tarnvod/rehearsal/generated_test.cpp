// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "rehearsal/generated_test.h"

#include "base/text.h"
#include "rehearsal/rehearsal_report.h"

#include <algorithm>

namespace tarn::command {
namespace {

using vod::schedule::Fault;
using vod::schedule::Kind;
using vod::schedule::Time;

constexpr auto head = R"(#include <gtest/gtest.h>
#include <tarnvod/video_object_detection.pb.h>
#include <vod_host.h>

#include <cstdint>
#include <string>
#include <vector>

// The application provides these: the first sets its cameras up and returns, the second ends them.
void startApplication();
void stopApplication();

namespace host = vod::host;

namespace {

/** A frame in which one object of the first class is seen. */
[[maybe_unused]] std::string frame(std::uint64_t timestamp, std::uint32_t object) {
  VOD::Scene scene;
  scene.set_timestamp(timestamp);
  scene.add_detections()->set_object_id(object);
  return scene.SerializeAsString();
}

)";

/** "set_receive_empty_hits" as the enumerator "SetReceiveEmptyHits". */
std::string enumeratorOf(const std::string& function) {
  std::string name;
  bool isFirst = true;
  for (const char character : function) {
    if (character == '_') {
      isFirst = true;
    } else {
      name += isFirst ? static_cast<char>(character - 'a' + 'A') : character;
      isFirst = false;
    }
  }
  return name;
}

/** The beginning or the end of a fault. */
struct Step {
  Time at;
  std::size_t fault;
  bool begins;
};

std::vector<Step> stepsOf(const std::vector<Fault>& faults) {
  std::vector<Step> steps;
  for (std::size_t i = 0; i < faults.size(); ++i) {
    steps.push_back({faults[i].at, i, true});
    if (formOf(faults[i].kind).hasDuration) {
      steps.push_back({faults[i].end(), i, false});
    }
  }
  std::stable_sort(steps.begin(), steps.end(), [](const Step& left, const Step& right) { return left.at < right.at; });
  return steps;
}

/** One statement for each camera that the fault concerns. */
std::string forCameras(const Fault& fault, const Expectation& expectation, const std::string& statement) {
  std::string text;
  for (const auto& [camera, classes] : expectation.cameras) {
    if (!fault.camera || *fault.camera == camera) {
      text += "  host::servedChannel(" + std::to_string(camera - 1) + ")" + statement + ";\n";
    }
  }
  return text;
}

std::string repeated(int count, const std::string& body) {
  return "  for (std::uint32_t i = 0; i < " + std::to_string(count) + "; ++i) {\n  " + body + "  }\n";
}

std::string dropped(const Fault& fault, const Expectation& expectation) {
  return forCameras(fault, expectation, ".dropSubscriptions()") + "  host::drain();\n";
}

std::string planned(const Fault& fault, const std::string& number, const std::string& effect) {
  return "  const int fault" + number + " = host::plan(host::Fault(host::Function::" + enumeratorOf(fault.function) +
         ").always()." + effect + ");\n";
}

/** The detector cannot be asked while it restarts. */
std::string withoutDetector(const std::string& number) {
  return "  const int fault" + number +
         " = host::plan(host::Fault(host::Function::GetInformation).always().failsWith(5));\n";
}

std::string begun(const Fault& fault, const std::string& number, const Expectation& expectation) {
  const auto each = [&](const std::string& statement) { return forCameras(fault, expectation, statement); };
  switch (fault.kind) {
    case Kind::Down:
      return "  host::takeServiceDown();\n  host::drain();\n";
    case Kind::Drop:
      return dropped(fault, expectation);
    case Kind::Refuse:
      return planned(fault, number, "failsWith(5)");
    case Kind::Hang:
      return "  const host::Gate gate" + number + ";\n" + planned(fault, number, "waitsAt(gate" + number + ")");
    case Kind::Silence:
      return "  // No frames arrive.\n";
    case Kind::Burst:
      return repeated(fault.count, each(".pushScene(frame(i, 1))"));
    case Kind::Damage:
      return each(".pushScene(frame(1, 1).substr(1))") + each(".pushScene(std::string(20, '\\xff'))") +
             each(".pushScene(\"\")");
    case Kind::Empty:
      return each(".pushScene(\"\")");
    case Kind::Repeat:
      return repeated(10, each(".pushScene(frame(1, 1))"));
    case Kind::Jump:
      return each(".pushScene(frame(1'000'000'000'000, 1))") +
             each(".pushScene(frame(1'000'000'000'000U + static_cast<std::uint64_t>(INT64_C(" +
                  std::to_string(fault.jump.count() * 1000) + ")), 1))");
    case Kind::Lose:
      return withoutDetector(number) + dropped(fault, expectation);
    case Kind::Renumber:
      return repeated(1000, each(".pushScene(frame(i, i))"));
  }
  return {};
}

std::string ended(const Fault& fault, const std::string& number, const Expectation& expectation) {
  switch (fault.kind) {
    case Kind::Down:
      return "  host::bringServiceUp();\n";
    case Kind::Refuse:
      return "  host::lift(fault" + number + ");\n";
    case Kind::Hang:
      return "  host::lift(fault" + number + ");\n  gate" + number + ".open();\n";
    case Kind::Lose:
      return "  host::lift(fault" + number + ");\n" + dropped(fault, expectation);
    default:
      return {};
  }
}

std::string stepText(const Step& step, const Fault& fault, const Expectation& expectation) {
  const std::string number = std::to_string(step.fault + 1);
  return step.begins ? "\n  // " + sentence(fault) + "\n" + begun(fault, number, expectation)
                     : ended(fault, number, expectation);
}

/** A thread of the application's may be held up by the fault that sets the cameras up. */
bool hangsFromTheBeginning(const std::vector<Fault>& faults) {
  return std::any_of(faults.begin(), faults.end(),
                     [](const Fault& fault) { return fault.kind == Kind::Hang && fault.at == Time(0); });
}

std::string body(const std::vector<Fault>& faults, const Expectation& expectation) {
  std::string text;
  bool isStarted = false;
  for (const Step& step : stepsOf(faults)) {
    const bool isBefore = step.at == Time(0) && step.begins && !hangsFromTheBeginning(faults);
    if (!isStarted && !isBefore) {
      text += "  startApplication();\n";
      isStarted = true;
    }
    text += stepText(step, faults[step.fault], expectation);
  }
  return text + (isStarted ? "" : "  startApplication();\n");
}

}  // namespace

std::string generatedTest(const RehearsalSettings& settings, const ApplicationFailure& failure) {
  const Expectation& expectation = failure.expectation;
  std::string text = "// Made by `tarnvod rehearse`. " + printable(sentenceOf(failure)) + "\n";
  text += head;
  for (const auto& [camera, classes] : expectation.cameras) {
    const std::string channel = std::to_string(camera - 1);
    text += "bool isSetUp" + std::to_string(camera) +
            "(const std::vector<host::Call>& /*calls*/) {\n  return !host::servedChannel(" + channel +
            ").subscriptions().empty();\n}\n\n";
  }
  text += "}  // namespace\n\nTEST(Rehearsal, Seed" + std::to_string(settings.seed) + "Day" +
          std::to_string(failure.day) + ") {\n  host::reset();\n";
  text += body(failure.schedule.faults, expectation);
  text += "\n  // Every camera is set up again; this throws if one is not within half a minute.\n";
  for (const auto& [camera, classes] : expectation.cameras) {
    text += "  host::waitForCalls(isSetUp" + std::to_string(camera) + ");\n";
  }
  text += "  stopApplication();\n  EXPECT_EQ(host::liveSubscribers(), 0);\n}\n";
  return text;
}

}  // namespace tarn::command
