// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "viewer/page_setup.h"

#include "records/json.h"

#include <nlohmann/json.hpp>

namespace tarn::command {
namespace {

Json boxesJson(const BoxConvention& boxes) {
  return {{"form", boxes.form == BoxConvention::Form::Size ? "size" : "corners"}, {"range", boxes.range}};
}

}  // namespace

std::string setupJson(const PageSetup& setup) {
  Json backgrounds = Json::object();
  for (const auto& [camera, address] : setup.backgrounds) {
    backgrounds[std::to_string(camera)] = address;
  }
  constexpr double usualAspect = 4.0 / 3.0;
  const double aspect = setup.aspect.value_or(setup.boxes.aspect().value_or(usualAspect));
  return oneLine({{"mode", setup.isLive ? "live" : "recording"},
                  {"cameras", setup.cameras},
                  {"boxes", boxesJson(setup.boxes)},
                  {"aspect", static_cast<float>(aspect)},
                  {"backgrounds", std::move(backgrounds)},
                  {"version", TARNVOD_VERSION}});
}

std::set<int> numbersOf(std::size_t recordings) {
  std::set<int> numbers;
  for (std::size_t number = 1; number <= recordings; ++number) {
    numbers.insert(static_cast<int>(number));
  }
  return numbers;
}

std::string pathOfOverview(int recording) {
  return recording == 1 ? "/recording.json" : "/recording-" + std::to_string(recording) + ".json";
}

}  // namespace tarn::command
