// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "base/text.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdio>
#include <cstdlib>
#include <cwchar>

namespace tarn::command {
namespace {

constexpr std::string_view replacement = "\uFFFD";
constexpr std::string_view ellipsis = "…";

struct Character {
  std::string_view bytes;
  char32_t codePoint = 0;
  bool valid = false;
};

std::size_t lengthOfSequence(unsigned char first) {
  if (first < 0x80) {
    return 1;
  }
  if (first >= 0xC2 && first < 0xE0) {
    return 2;
  }
  if (first >= 0xE0 && first < 0xF0) {
    return 3;
  }
  if (first >= 0xF0 && first < 0xF5) {
    return 4;
  }
  return 0;
}

bool isOverlongOrSurrogate(char32_t codePoint, std::size_t length) {
  constexpr std::array<char32_t, 5> smallest{0, 0, 0x80, 0x800, 0x10000};
  return codePoint < smallest[length] || (codePoint >= 0xD800 && codePoint < 0xE000) || codePoint > 0x10FFFF;
}

/** The first character of a text that is not empty; one byte, not valid, where the text is not UTF-8. */
Character firstCharacter(std::string_view text) {
  const auto byteAt = [&](std::size_t index) { return static_cast<unsigned char>(text[index]); };
  const Character invalid{text.substr(0, 1), 0, false};
  const std::size_t length = lengthOfSequence(byteAt(0));
  if (length == 0 || length > text.size()) {
    return invalid;
  }
  char32_t codePoint = length == 1 ? byteAt(0) : byteAt(0) & (0x7FU >> length);
  for (std::size_t index = 1; index < length; ++index) {
    if ((byteAt(index) & 0xC0) != 0x80) {
      return invalid;
    }
    codePoint = codePoint << 6 | (byteAt(index) & 0x3FU);
  }
  if (isOverlongOrSurrogate(codePoint, length)) {
    return invalid;
  }
  return {text.substr(0, length), codePoint, true};
}

bool isControl(char32_t codePoint) {
  return codePoint < 0x20 || (codePoint >= 0x7F && codePoint < 0xA0);
}

std::size_t columnsOf(const Character& character) {
  const int columns = character.valid ? wcwidth(static_cast<wchar_t>(character.codePoint)) : 1;
  return columns < 0 ? 1 : static_cast<std::size_t>(columns);
}

char similarAscii(char32_t codePoint) {
  switch (codePoint) {
    case U'━':
      return '=';
    case U'·':
    case U'…':
      return '.';
    default:
      return '?';
  }
}

}  // namespace

std::string printable(std::string_view text) {
  std::string result;
  while (!text.empty()) {
    const Character character = firstCharacter(text);
    result += character.valid && !isControl(character.codePoint) ? character.bytes : replacement;
    text.remove_prefix(character.bytes.size());
  }
  return result;
}

bool localeIsUtf8() {
  for (const char* const variable : {"LC_ALL", "LC_CTYPE", "LANG"}) {
    const char* const locale = std::getenv(variable);  // NOLINT(concurrency-mt-unsafe): nobody changes the environment
    if (locale != nullptr && *locale != '\0') {
      const std::string_view name(locale);
      const std::string_view set = name.substr(std::min(name.find('.'), name.size()));
      return set.substr(0, 6) == ".UTF-8" || set.substr(0, 6) == ".utf-8" || set.substr(0, 5) == ".utf8" ||
             set.substr(0, 5) == ".UTF8";
    }
  }
  return false;
}

std::string toAscii(std::string_view text) {
  std::string result;
  while (!text.empty()) {
    const Character character = firstCharacter(text);
    if (character.valid && character.codePoint < 0x80) {
      result += character.bytes;
    } else {
      result.append(columnsOf(character), similarAscii(character.codePoint));
    }
    text.remove_prefix(character.bytes.size());
  }
  return result;
}

std::size_t displayWidth(std::string_view text) {
  std::size_t columns = 0;
  while (!text.empty()) {
    const Character character = firstCharacter(text);
    columns += columnsOf(character);
    text.remove_prefix(character.bytes.size());
  }
  return columns;
}

std::string cut(std::string_view text, std::size_t columns) {
  if (displayWidth(text) <= columns) {
    return std::string(text);
  }
  if (columns == 0) {
    return "";
  }
  std::string result;
  std::size_t used = 0;
  while (true) {
    const Character character = firstCharacter(text);
    used += columnsOf(character);
    if (used >= columns) {
      return result.append(ellipsis);
    }
    result += character.bytes;
    text.remove_prefix(character.bytes.size());
  }
}

std::string fitted(std::string_view text, std::size_t columns) {
  std::string result = cut(text, columns);
  const std::size_t width = displayWidth(result);
  return width < columns ? result.append(columns - width, ' ') : result;
}

std::string fittedRight(std::string_view text, std::size_t columns) {
  const std::string result = cut(text, columns);
  const std::size_t width = displayWidth(result);
  return width < columns ? std::string(columns - width, ' ') + result : result;
}

std::string folded(std::string_view text, std::size_t columns, std::size_t indent) {
  std::string result;
  std::size_t used = 0;
  while (!text.empty()) {
    // A word with the spaces before it.
    const std::size_t end = std::min(text.find(' ', text.find_first_not_of(' ')), text.size());
    std::string_view word = text.substr(0, end);
    text.remove_prefix(end);
    if (used > indent && used + displayWidth(word) > columns) {
      result.append("\n").append(indent, ' ');
      used = indent;
      word.remove_prefix(std::min(word.find_first_not_of(' '), word.size()));
    }
    result += word;
    used += displayWidth(word);
  }
  return result;
}

std::string fixed(double number, int digits) {
  std::array<char, 400> buffer{};  // the greatest double has 309 digits
  const int length = std::snprintf(buffer.data(), buffer.size(), "%.*f", digits, number);
  return {buffer.data(), static_cast<std::size_t>(length)};
}

std::string counted(std::uint64_t count, const std::string& noun) {
  return std::to_string(count) + ' ' + noun + (count == 1 ? "" : "s");
}

std::string byteSize(std::uint64_t bytes) {
  const auto size = static_cast<double>(bytes);
  if (bytes < 1'000) {
    return std::to_string(bytes) + " B";
  }
  if (bytes < 1'000'000) {
    return fixed(size / 1e3, 1) + " kB";
  }
  if (bytes < 1'000'000'000) {
    return fixed(size / 1e6, 1) + " MB";
  }
  return fixed(size / 1e9, 1) + " GB";
}

std::string clockText(std::uint64_t microseconds) {
  const std::uint64_t milliseconds = microseconds / 1000;
  const std::uint64_t minutes = milliseconds / 60'000;
  const auto twoDigits = [](std::uint64_t number) { return (number < 10 ? "0" : "") + std::to_string(number); };
  const std::string seconds =
      twoDigits(milliseconds / 1000 % 60) + '.' + std::to_string(1000 + milliseconds % 1000).substr(1);
  return minutes < 60 ? std::to_string(minutes) + ':' + seconds
                      : std::to_string(minutes / 60) + ':' + twoDigits(minutes % 60) + ':' + seconds;
}

std::string shortest(float number) {
  std::array<char, 32> buffer{};
  const auto [end, error] = std::to_chars(buffer.data(), buffer.data() + buffer.size(), number);
  return {buffer.data(), end};
}

}  // namespace tarn::command
