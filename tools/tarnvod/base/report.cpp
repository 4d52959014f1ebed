// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "base/report.h"

#include "base/output.h"
#include "base/terminal.h"
#include "base/text.h"

#include <unistd.h>

#include <algorithm>
#include <sstream>

namespace tarn::command {
namespace {

constexpr std::size_t labelColumns = 21;
constexpr std::size_t nameColumns = 18;

/** Long lines continue below the values, a little further in. */
constexpr std::size_t continuationIndent = labelColumns + 2;

std::string foldedLines(const std::string& report, std::size_t columns) {
  std::istringstream lines(report);
  std::string result;
  for (std::string line; std::getline(lines, line);) {
    result += folded(line, columns, continuationIndent) + '\n';
  }
  return result;
}

}  // namespace

std::string labelled(const std::string& label, const std::string& value) {
  return fitted(label, labelColumns) + value + '\n';
}

std::string labelledList(const std::string& label, const std::vector<std::string>& values) {
  return labelled(label, values.empty() ? "none" : joined(values, '\n' + std::string(labelColumns, ' ')));
}

std::string nameColumn(const std::string& name) {
  const std::string text = printable(name);
  return fitted(text, std::max(nameColumns, displayWidth(text))) + "  ";
}

void printReport(const std::string& report) {
  Output& output = standardOutput();
  output.writeText(output.isTerminal() ? foldedLines(report, terminalSize(STDOUT_FILENO).columns) : report);
}

}  // namespace tarn::command
