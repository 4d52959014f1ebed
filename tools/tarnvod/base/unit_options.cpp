// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "base/unit_options.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <map>

namespace tarn::command {
namespace {

/** A number above 0, followed by one of the units; each has its factor. None when the product is out of range. */
std::optional<std::uint64_t> parseWithUnit(const std::string& text, const std::map<std::string, double>& units) {
  const std::size_t digits = std::min(text.find_first_not_of("0123456789."), text.size());
  const auto unit = units.find(text.substr(digits));
  double number = 0;
  if (unit == units.end() || !CLI::detail::lexical_cast(text.substr(0, digits), number)) {
    return std::nullopt;
  }
  constexpr double greatest = 1e18;
  const double product = number * unit->second;
  return product >= 1 && product <= greatest ? std::make_optional(static_cast<std::uint64_t>(product)) : std::nullopt;
}

std::optional<std::uint64_t> parseByteSize(const std::string& text) {
  constexpr double kilo = 1024;
  return parseWithUnit(text, {{"", 1}, {"K", kilo}, {"M", kilo * kilo}, {"G", kilo * kilo * kilo}});
}

/** Adds an option whose text the parser reads; `what` says what it should be. */
CLI::Option* addParsed(CLI::App& command, const std::string& name, std::optional<std::uint64_t>& value,
                       const std::string& help, std::optional<std::uint64_t> (*parser)(const std::string&),
                       const std::string& what) {
  const auto parse = [&value, name, parser, what](const std::string& text) {
    value = parser(text);
    if (!value) {
      throw CLI::ValidationError(name, "'" + text + "' is not " + what);
    }
  };
  return command.add_option_function<std::string>(name, parse, help);
}

}  // namespace

std::optional<std::uint64_t> parseDuration(const std::string& text) {
  constexpr double second = 1e6;
  constexpr double minute = 60 * second;
  constexpr double hour = 60 * minute;
  return parseWithUnit(
      text, {{"", second}, {"ms", second / 1000}, {"s", second}, {"m", minute}, {"h", hour}, {"d", 24 * hour}});
}

void addDuration(CLI::App& command, const std::string& name, std::optional<std::uint64_t>& microseconds,
                 const std::string& help) {
  addParsed(command, name, microseconds, help, parseDuration, "a time like 60s, 5m or 24h")->type_name("TIME");
}

void addByteSize(CLI::App& command, const std::string& name, std::optional<std::uint64_t>& bytes,
                 const std::string& help) {
  addParsed(command, name, bytes, help, parseByteSize, "a size like 256M")->type_name("SIZE");
}

}  // namespace tarn::command
