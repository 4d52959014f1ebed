// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "base/facts.h"

#include "base/text.h"

#include <algorithm>

namespace tarn::command {
namespace {

constexpr std::size_t labelColumns = 21;
constexpr std::size_t nameColumns = 18;

}  // namespace

std::string fact(const std::string& label, const std::string& value) {
  return fitted(label, labelColumns) + value + '\n';
}

std::string facts(const std::string& label, const std::vector<std::string>& values) {
  return fact(label, values.empty() ? "none" : joined(values, '\n' + std::string(labelColumns, ' ')));
}

std::string columnOf(const std::string& name) {
  const std::string text = printable(name);
  return fitted(text, std::max(nameColumns, displayWidth(text))) + "  ";
}

}  // namespace tarn::command
