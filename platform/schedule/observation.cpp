// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "schedule/observation.h"

#include <algorithm>
#include <cctype>
#include <charconv>

namespace vod::schedule {

namespace {

constexpr std::string_view hexadecimal = "0123456789abcdef";

bool isPlain(char character) {
  const auto byte = static_cast<unsigned char>(character);
  return byte < 0x80 && (std::isalnum(byte) != 0 || character == '_' || character == '-' || character == '.');
}

std::string encoded(std::string_view value) {
  std::string text;
  for (const char character : value) {
    if (isPlain(character)) {
      text += character;
    } else {
      const auto byte = static_cast<unsigned char>(character);
      text += {'%', hexadecimal[byte / 16U], hexadecimal[byte % 16U]};
    }
  }
  return text;
}

std::optional<std::string> decoded(std::string_view text) {
  std::string value;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] != '%') {
      value += text[i];
      continue;
    }
    const auto high = i + 2 < text.size() ? hexadecimal.find(text[i + 1]) : std::string_view::npos;
    const auto low = i + 2 < text.size() ? hexadecimal.find(text[i + 2]) : std::string_view::npos;
    if (high == std::string_view::npos || low == std::string_view::npos) {
      return std::nullopt;
    }
    value += static_cast<char>(high * 16 + low);
    i += 2;
  }
  return value;
}

/** Takes the text up to the next blank from the front. */
std::string_view takeWord(std::string_view& line) {
  const std::size_t end = std::min(line.find(' '), line.size());
  const std::string_view word = line.substr(0, end);
  line.remove_prefix(std::min(end + 1, line.size()));
  return word;
}

template <typename Number>
bool takeNumber(std::string_view& line, Number& number) {
  const std::string_view word = takeWord(line);
  const auto [end, error] = std::from_chars(word.data(), word.data() + word.size(), number);
  return error == std::errc() && end == word.data() + word.size();
}

}  // namespace

std::int64_t Observation::number(const std::string& field) const {
  const std::string value = text(field);
  std::int64_t number = 0;
  std::from_chars(value.data(), value.data() + value.size(), number);
  return number;
}

std::string Observation::text(const std::string& field) const {
  const auto found = fields.find(field);
  return found == fields.end() ? std::string() : found->second;
}

std::string toLine(const Observation& observation) {
  std::string line =
      std::to_string(observation.process) + ' ' + std::to_string(observation.at.count()) + ' ' + observation.event;
  for (const auto& [name, value] : observation.fields) {
    line += ' ' + name + '=' + encoded(value);
  }
  return line + '\n';
}

std::optional<Observation> parseObservation(std::string_view line) {
  Observation observation;
  Time::rep milliseconds = 0;
  if (!takeNumber(line, observation.process) || !takeNumber(line, milliseconds)) {
    return std::nullopt;
  }
  observation.at = Time(milliseconds);
  observation.event = takeWord(line);
  while (!line.empty()) {
    const std::string_view field = takeWord(line);
    const std::size_t equals = field.find('=');
    const auto value = equals == std::string_view::npos ? std::nullopt : decoded(field.substr(equals + 1));
    if (!value) {
      return std::nullopt;
    }
    observation.fields.emplace(field.substr(0, equals), *value);
  }
  return observation.event.empty() ? std::nullopt : std::optional(observation);
}

}  // namespace vod::schedule
