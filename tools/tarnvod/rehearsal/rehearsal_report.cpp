// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "rehearsal/rehearsal_report.h"

#include "base/errors.h"
#include "base/files.h"
#include "base/report.h"
#include "base/text.h"
#include "rehearsal/generated_test.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <cctype>
#include <filesystem>
#include <system_error>

namespace tarn::command {
namespace {

using vod::schedule::Fault;
using vod::schedule::Kind;
using vod::schedule::Time;

double inSeconds(Time time) {
  return std::chrono::duration<double>(time).count();
}

/** The times of the recoveries, in order. */
std::vector<double> recoveryTimes(const RehearsalResult& result) {
  std::vector<double> times;
  for (const Recovery& recovery : result.recoveries) {
    times.push_back(inSeconds(recovery.time));
  }
  std::sort(times.begin(), times.end());
  return times;
}

std::string recoveryText(const std::vector<double>& times) {
  if (times.empty()) {
    return "none";
  }
  return std::to_string(times.size()) + ", half of them within " + fixed(times[times.size() / 2], 1) +
         " s, the longest " + fixed(times.back(), 1) + " s";
}

std::string faultsText(const RehearsalResult& result) {
  std::uint64_t total = 0;
  std::vector<std::string> kinds;
  for (const auto& [kind, count] : result.faults) {
    total += count;
    kinds.push_back(std::to_string(count) + ' ' + formOf(kind).word);
  }
  return std::to_string(total) + (kinds.empty() ? "" : ": " + joined(kinds, ", "));
}

std::string camerasText(const Expectation& expectation) {
  std::vector<std::string> cameras;
  for (const auto& [camera, classes] : expectation.cameras) {
    cameras.push_back(std::to_string(camera) + (classes.empty() ? "" : " (" + printable(joined(classes, ", ")) + ')'));
  }
  return cameras.empty() ? "none" : joined(cameras, ", ");
}

std::string quoted(const std::string& word) {
  const bool isPlain = !word.empty() && word.find_first_not_of(
                                            "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ"
                                            "0123456789_-+=./:,@%") == std::string::npos;
  if (isPlain) {
    return word;
  }
  std::string text = "'";
  for (const char character : word) {
    text += character == '\'' ? "'\\''" : std::string(1, character);
  }
  return text + '\'';
}

std::string indentedLines(const std::string& text) {
  std::string result = "    ";
  for (std::size_t i = 0; i < text.size(); ++i) {
    result += text[i];
    if (text[i] == '\n' && i + 1 < text.size()) {
      result += "    ";
    }
  }
  return result;
}

std::string failureText(const RehearsalSettings& settings, const ApplicationFailure& failure) {
  std::string text = "\n" + sentenceOf(failure) + '\n';
  if (failure.day == 0) {
    return text;
  }
  text += "  on " + counted(failure.days.size(), "day") + "; here day " + std::to_string(failure.day) + ", with " +
          std::to_string(failure.schedule.faults.size()) + " of its " + counted(failure.faultsOfDay, "fault") + ":\n";
  text += indentedLines(toText(failure.schedule));
  return text + "  " + replayCommand(settings, failure) + '\n';
}

Json failureJson(const RehearsalSettings& settings, const ApplicationFailure& failure) {
  return {{"kind", nameOf(failure.finding.kind)},
          {"finding", failure.finding.text},
          {"sentence", sentenceOf(failure)},
          {"day", failure.day},
          {"days", failure.days},
          {"faults_of_day", failure.faultsOfDay},
          {"faults", failure.schedule.faults.size()},
          {"schedule", toText(failure.schedule)},
          {"replay", replayCommand(settings, failure)}};
}

}  // namespace

std::string sentenceOf(const ApplicationFailure& failure) {
  std::string text = failure.finding.text;
  text.front() = static_cast<char>(std::toupper(static_cast<unsigned char>(text.front())));
  if (failure.day == 0) {
    return text + " on a quiet day, without any fault.";
  }
  std::vector<std::string> events;
  for (const Fault& fault : failure.schedule.faults) {
    events.push_back("after " + fixed(inSeconds(fault.at), 1) + " s " + sentence(fault));
  }
  const std::string repeated =
      failure.schedule.rounds > 1 ? ", " + std::to_string(failure.schedule.rounds) + " times" : "";
  return text + (events.empty() ? " on a day without faults" : " when " + joined(events, ", and ")) + repeated + '.';
}

std::string replayCommand(const RehearsalSettings& settings, const ApplicationFailure& failure) {
  std::vector<std::string> words;
  std::transform(settings.application.words.begin(), settings.application.words.end(), std::back_inserter(words),
                 quoted);
  const std::string day = settings.schedule
                              ? "--schedule FILE"
                              : "--seed " + std::to_string(settings.seed) + " --day " + std::to_string(failure.day);
  return "tarnvod rehearse " + day + " -- " + joined(words, " ");
}

std::string rehearsalText(const RehearsalSettings& settings, const RehearsalResult& result) {
  std::string text = labelled("days", std::to_string(result.days) + ", seed " + std::to_string(settings.seed) +
                                          ", in " + fixed(result.seconds, 1) + " s");
  text += labelled("cameras", camerasText(result.expectation));
  text += labelled("survived", std::to_string(result.survived));
  text += labelled("faults", faultsText(result));
  text += labelled("recoveries", recoveryText(recoveryTimes(result)));
  text += labelled("failures", result.failures.empty() ? "none" : std::to_string(result.failures.size()));
  for (const ApplicationFailure& failure : result.failures) {
    text += failureText(settings, failure);
  }
  return text;
}

Json toJson(const RehearsalSettings& settings, const RehearsalResult& result) {
  Json json = {{"application", settings.application.words},
               {"seed", settings.seed},
               {"first_day", settings.firstDay},
               {"days", result.days},
               {"survived", result.survived},
               {"unconfirmed", result.unconfirmed},
               {"seconds", result.seconds}};
  json["faults"] = Json::object();
  for (const auto& [kind, count] : result.faults) {
    json["faults"][formOf(kind).word] = count;
  }
  json["cameras"] = Json::array();
  for (const auto& [camera, classes] : result.expectation.cameras) {
    json["cameras"].push_back({{"camera", camera}, {"classes", classes}});
  }
  json["recoveries"] = Json::array();
  for (const Recovery& recovery : result.recoveries) {
    json["recoveries"].push_back({{"after", formOf(recovery.after).word}, {"seconds", inSeconds(recovery.time)}});
  }
  json["failures"] = Json::array();
  for (const ApplicationFailure& failure : result.failures) {
    json["failures"].push_back(failureJson(settings, failure));
  }
  return json;
}

std::vector<std::string> writeFailures(const std::string& folder, const RehearsalSettings& settings,
                                       const RehearsalResult& result) {
  std::error_code error;
  std::filesystem::create_directories(folder, error);
  if (error) {
    throw Failure(folder + ": " + error.message());
  }
  std::vector<std::string> names;
  for (const ApplicationFailure& failure : result.failures) {
    const std::filesystem::path base = std::filesystem::path(folder) / nameOf(failure.finding.kind);
    const std::string comment = "# " + sentenceOf(failure) + '\n';
    names.push_back(base.string() + ".schedule");
    writeFile(names.back(), comment + toText(failure.schedule));
    if (const auto test = generatedTest(settings, failure)) {
      names.push_back(base.string() + "_test.cpp");
      writeFile(names.back(), *test);
    }
  }
  return names;
}

}  // namespace tarn::command
