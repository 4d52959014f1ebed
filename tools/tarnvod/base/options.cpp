// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "base/options.h"

#include <CLI/CLI.hpp>

#include <charconv>
#include <cmath>
#include <limits>
#include <string_view>

namespace tarn::command {
namespace {

/** Takes a number from the front of the text. */
bool takeNumber(std::string_view& text, float& number) {
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  text.remove_prefix(static_cast<std::size_t>(end - text.data()));
  return error == std::errc{} && std::isfinite(number);
}

bool takeComma(std::string_view& text) {
  const bool found = !text.empty() && text.front() == ',';
  text.remove_prefix(found ? 1 : 0);
  return found;
}

std::optional<std::array<float, 4>> parseFourNumbers(std::string_view text) {
  std::array<float, 4> numbers{};
  for (std::size_t index = 0; index < numbers.size(); ++index) {
    if ((index > 0 && !takeComma(text)) || !takeNumber(text, numbers[index])) {
      return std::nullopt;
    }
  }
  return text.empty() ? std::make_optional(numbers) : std::nullopt;
}

/** Accepts numbers from `least` on; `what` says which. */
CLI::Validator numberFrom(double least, const std::string& what) {
  return {[least, what](std::string& text) {
            double number = 0;
            const bool isNumber = CLI::detail::lexical_cast(text, number) && std::isfinite(number);
            return isNumber && number >= least ? std::string() : "'" + text + "' is not " + what;
          },
          ""};
}

/** "4:3", or a number. */
std::optional<double> parseAspect(const std::string& text) {
  const std::size_t colon = text.find(':');
  double width = 0;
  double height = 1;
  const bool isRead = CLI::detail::lexical_cast(text.substr(0, colon), width) &&
                      (colon == std::string::npos || CLI::detail::lexical_cast(text.substr(colon + 1), height));
  const double aspect = width / height;
  return isRead && aspect >= 0.1 && aspect <= 10 ? std::make_optional(aspect) : std::nullopt;
}

}  // namespace

bool Limits::reachedBy(std::chrono::steady_clock::duration elapsed) const {
  return seconds && std::chrono::duration<double>(elapsed).count() >= *seconds;
}

void addLimits(CLI::App& command, Limits& limits, const std::string& framesHelp) {
  command.add_option("--frames", limits.frames, framesHelp)
      ->type_name("N")
      ->check(numberFrom(1, "a number of frames, 1 or more"));
  command.add_option("--seconds", limits.seconds, "End after so many seconds")
      ->type_name("S")
      ->check(numberFrom(std::numeric_limits<double>::min(), "a number of seconds above 0"));
}

CLI::Option* addFourNumbers(CLI::App& command, const std::string& name, std::optional<std::array<float, 4>>& numbers,
                            const std::string& help) {
  const auto parse = [&numbers, name](const std::string& text) {
    numbers = parseFourNumbers(text);
    if (!numbers) {
      throw CLI::ValidationError(name, "'" + text + "' is not four numbers with commas between them");
    }
  };
  return command.add_option_function<std::string>(name, parse, help)->type_name("A,B,C,D");
}

void addAspect(CLI::App& command, std::optional<double>& aspect) {
  const auto parse = [&aspect](const std::string& text) {
    aspect = parseAspect(text);
    if (!aspect) {
      throw CLI::ValidationError("--aspect", "'" + text + "' is no shape of a picture like 4:3");
    }
  };
  command
      .add_option_function<std::string>(
          "--aspect", parse,
          "Shape of what the camera sees; default: that of the range, or 4:3 when the range is a square")
      ->type_name("W:H");
}

void takesCameraNumbers(CLI::Option& option) {
  option.type_name("N")->check(numberFrom(1, "a camera: they are counted from 1"));
}

}  // namespace tarn::command
