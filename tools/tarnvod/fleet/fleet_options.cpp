// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "fleet/fleet_options.h"

#include "fleet/topics.h"

#include <CLI/CLI.hpp>

#include <cstdint>
#include <iomanip>
#include <random>
#include <sstream>

namespace tarn::command {

CLI::Option* addFleetName(CLI::App& command, const std::string& option, std::string& name, const std::string& help) {
  const auto check = [](const std::string& text) {
    return isFleetName(text) ? std::string()
                             : "'" + text + "' is not a name of 1 to 64 letters, digits, '.', '_' or '-'";
  };
  return command.add_option(option, name, help)->type_name("NAME")->check(CLI::Validator(check, ""));
}

std::string newStartId() {
  std::random_device random;
  std::ostringstream text;
  text << std::hex << std::setfill('0') << std::setw(8) << std::uint32_t{random()} << std::setw(8)
       << std::uint32_t{random()};
  return text.str();
}

}  // namespace tarn::command
