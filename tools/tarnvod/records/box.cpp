// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "records/box.h"

#include "base/errors.h"
#include "base/options.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <cmath>
#include <map>
#include <string>

namespace tarn::command {
namespace {

/** 0 at the first end, 1 at the second. */
double positionBetween(float first, float second, float value) {
  return (double{value} - first) / (double{second} - first);
}

}  // namespace

bool Box::isFinite() const {
  return std::isfinite(left) && std::isfinite(top) && std::isfinite(right) && std::isfinite(bottom);
}

Box BoxConvention::toPicture(const std::array<float, 4>& numbers) const {
  const bool isSize = form == Form::Size;
  const auto across = [this](float x) { return positionBetween(range[0], range[2], x); };
  const auto down = [this](float y) { return positionBetween(range[1], range[3], y); };
  const auto [x1, x2] = std::minmax({across(numbers[0]), across(isSize ? numbers[0] + numbers[2] : numbers[2])});
  const auto [y1, y2] = std::minmax({down(numbers[1]), down(isSize ? numbers[1] + numbers[3] : numbers[3])});
  return {x1, y1, x2, y2};
}

std::optional<double> BoxConvention::aspect() const {
  const double ratio = std::abs((double{range[2]} - range[0]) / (double{range[3]} - range[1]));
  return ratio == 1 ? std::nullopt : std::make_optional(ratio);
}

void BoxOptions::addTo(CLI::App& command) {
  const std::map<std::string, BoxConvention::Form> forms{{"corners", BoxConvention::Form::Corners},
                                                         {"size", BoxConvention::Form::Size}};
  command
      .add_option_function<std::string>(
          "--box", [this, forms](const std::string& name) { form_ = forms.at(name); },
          "Meaning of a box's four numbers: 'corners' (left, top, right, bottom; the default) or 'size' (left, top, "
          "width, height)")
      ->type_name("corners|size")
      ->check(CLI::IsMember({"corners", "size"}));
  addFourNumbers(command, "--range", range_,
                 "The numbers of the picture's left, upper, right and lower edge; default 0,0,1,1");
}

BoxConvention BoxOptions::convention() const {
  BoxConvention convention;
  convention.form = form_;
  convention.range = range_.value_or(convention.range);
  if (convention.range[0] == convention.range[2] || convention.range[1] == convention.range[3]) {
    throw UsageError("--range: left and right, upper and lower must differ");
  }
  return convention;
}

}  // namespace tarn::command
