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

/** Accepts whole numbers from 1 to `greatest`; `what` describes them. */
CLI::Validator wholeNumber(std::uint64_t greatest, const std::string& what) {
  return {[greatest, what](const std::string& text) {
            std::uint64_t number = 0;
            const char* const end = text.data() + text.size();
            const auto [last, error] = std::from_chars(text.data(), end, number);
            const bool isAccepted = error == std::errc{} && last == end && number >= 1 && number <= greatest;
            return isAccepted ? std::string() : "'" + text + "' is not " + what;
          },
          ""};
}

/** Accepts finite numbers above 0; `what` describes them. */
CLI::Validator positiveNumber(const std::string& what) {
  return {[what](std::string& text) {
            double number = 0;
            const bool isNumber = CLI::detail::lexical_cast(text, number) && std::isfinite(number);
            return isNumber && number > 0 ? std::string() : "'" + text + "' is not " + what;
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
  takesFrameNumbers(*command.add_option("--frames", limits.frames, framesHelp));
  command.add_option("--seconds", limits.seconds, "End after S seconds")
      ->type_name("S")
      ->check(positiveNumber("a number of seconds above 0"));
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
      throw CLI::ValidationError("--aspect", "'" + text + "' is not the shape of a picture, such as 4:3");
    }
  };
  command
      .add_option_function<std::string>(
          "--aspect", parse,
          "Width by height of the camera's picture; default: that of the range, or 4:3 if the range is a square")
      ->type_name("W:H");
}

void takesCameraNumbers(CLI::Option& option) {
  constexpr auto greatest = static_cast<std::uint64_t>(std::numeric_limits<int>::max());
  option.type_name("N")->check(wholeNumber(greatest, "a camera number; cameras are counted from 1"));
}

void takesFrameNumbers(CLI::Option& option) {
  constexpr std::uint64_t greatest = std::numeric_limits<std::int64_t>::max();
  option.type_name("N")->check(wholeNumber(greatest, "a number of frames from 1 to " + std::to_string(greatest)));
}

}  // namespace tarn::command
