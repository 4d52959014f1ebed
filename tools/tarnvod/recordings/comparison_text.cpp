// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "base/report.h"
#include "base/text.h"
#include "recordings/comparison.h"

#include <nlohmann/json.hpp>

#include <optional>

namespace tarn::command {
namespace {

constexpr std::size_t nameColumns = 14;
constexpr std::size_t numberColumns = 10;

std::string number(std::uint64_t value) {
  return fittedRight(std::to_string(value), numberColumns);
}

std::string share(const std::optional<double>& value) {
  return fittedRight(value ? fixed(*value, 4) : "-", numberColumns);
}

std::string figuresLine(const std::string& name, const TrackingFigures& figures) {
  return fitted(printable(name), nameColumns) + number(figures.reference) + number(figures.compared) +
         number(figures.referenceObjects) + number(figures.comparedObjects) + number(figures.matched) +
         number(figures.missed) + number(figures.added) + number(figures.identitySwitches) + share(figures.mota()) +
         share(figures.idf1()) + '\n';
}

std::string headerLine() {
  std::string line = fitted("class", nameColumns);
  for (const char* name :
       {"found A", "found B", "objects A", "objects B", "matched", "missed", "added", "switches", "MOTA", "IDF1"}) {
    line += fittedRight(name, numberColumns);
  }
  return line + '\n';
}

Json orNull(const std::optional<double>& value) {
  return value ? Json(static_cast<float>(*value)) : Json(nullptr);
}

Json figuresJson(const TrackingFigures& figures) {
  const auto difference = [](std::uint64_t from, std::uint64_t to) {
    return static_cast<std::int64_t>(to) - static_cast<std::int64_t>(from);
  };
  return {{"detections", {{"a", figures.reference}, {"b", figures.compared}}},
          {"detectionsDifference", difference(figures.reference, figures.compared)},
          {"objects", {{"a", figures.referenceObjects}, {"b", figures.comparedObjects}}},
          {"objectsDifference", difference(figures.referenceObjects, figures.comparedObjects)},
          {"matched", figures.matched},
          {"missed", figures.missed},
          {"added", figures.added},
          {"identitySwitches", figures.identitySwitches},
          {"mota", orNull(figures.mota())},
          {"idf1", orNull(figures.idf1())}};
}

}  // namespace

std::string comparisonText(const Comparison& comparison) {
  std::string text =
      labelled("frames", std::to_string(comparison.frames) + " in both, " + std::to_string(comparison.referenceFrames) +
                             " in A only, " + std::to_string(comparison.comparedFrames) + " in B only") +
      '\n' + headerLine();
  for (const auto& [name, figures] : comparison.classes) {
    text += figuresLine(name, figures);
  }
  return text + figuresLine("all classes", comparison.total());
}

Json toJson(const Comparison& comparison) {
  Json classes = Json::object();
  for (const auto& [name, figures] : comparison.classes) {
    classes[name] = figuresJson(figures);
  }
  return {{"equal", comparison.areEqual()},
          {"frames",
           {{"both", comparison.frames}, {"aOnly", comparison.referenceFrames}, {"bOnly", comparison.comparedFrames}}},
          {"classes", classes},
          {"total", figuresJson(comparison.total())}};
}

}  // namespace tarn::command
