// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "metrics/metrics_text.h"

#include <array>
#include <charconv>

namespace tarn::command {
namespace {

std::string escaped(std::string_view value) {
  std::string text;
  for (const char byte : value) {
    if (byte == '\\' || byte == '"') {
      text += '\\';
    }
    byte == '\n' ? text += "\\n" : text += byte;
  }
  return text;
}

}  // namespace

void MetricsText::begin(std::string_view name, std::string_view help, std::string_view type) {
  name_ = name;
  text_.append("# HELP ").append(name).append(" ").append(help).append("\n");
  text_.append("# TYPE ").append(name).append(" ").append(type).append("\n");
}

void MetricsText::add(std::uint64_t value, const Labels& labels, std::string_view suffix) {
  addLine(std::to_string(value), labels, suffix);
}

void MetricsText::add(double value, const Labels& labels, std::string_view suffix) {
  addLine(decimalText(value), labels, suffix);
}

void MetricsText::addLine(std::string_view value, const Labels& labels, std::string_view suffix) {
  text_.append(name_).append(suffix);
  char separator = '{';
  for (const auto& [label, content] : labels) {
    text_.append(1, separator).append(label).append("=\"").append(escaped(content)).append("\"");
    separator = ',';
  }
  text_.append(labels.empty() ? " " : "} ").append(value).append("\n");
}

void MetricsText::counter(std::string_view name, std::string_view help, std::uint64_t value) {
  beginCounter(name, help);
  add(value);
}

void MetricsText::gauge(std::string_view name, std::string_view help, std::uint64_t value) {
  beginGauge(name, help);
  add(value);
}

std::string decimalText(double value) {
  std::array<char, 32> digits{};
  const auto [end, error] = std::to_chars(digits.data(), digits.data() + digits.size(), value);
  static_cast<void>(error);  // every number fits
  return {digits.data(), end};
}

void addBuildInfo(MetricsText& text) {
  text.beginGauge("tarnvod_build_info", "The version of the command; the value is always 1.");
  text.add(std::uint64_t{1}, {{"version", TARNVOD_VERSION}});
}

}  // namespace tarn::command
