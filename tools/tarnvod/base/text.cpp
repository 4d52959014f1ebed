// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "base/text.h"

#include <fmt/format.h>
#include <utf8cpp/utf8.h>

#include <algorithm>
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

/** The first character of a text that is not empty; one byte, not valid, where
 * the text is not UTF-8. */
Character firstCharacter(std::string_view text) {
  const char* end = text.data();
  try {
    const char32_t codePoint = utf8::next(end, text.data() + text.size());
    return {text.substr(0, static_cast<std::size_t>(end - text.data())), codePoint, true};
  } catch (const utf8::exception&) {
    return {text.substr(0, 1), 0, false};
  }
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
    const char* const locale = std::getenv(variable);  // NOLINT(concurrency-mt-unsafe): nobody changes
                                                       // the environment
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
  return fmt::format("{:.{}f}", number, digits);
}

std::string counted(std::uint64_t count, const std::string& noun) {
  return fmt::format("{} {}{}", count, noun, count == 1 ? "" : "s");
}

std::string byteSize(std::uint64_t bytes) {
  const auto size = static_cast<double>(bytes);
  if (bytes < 1'000) {
    return fmt::format("{} B", bytes);
  }
  if (bytes < 1'000'000) {
    return fmt::format("{:.1f} kB", size / 1e3);
  }
  if (bytes < 1'000'000'000) {
    return fmt::format("{:.1f} MB", size / 1e6);
  }
  return fmt::format("{:.1f} GB", size / 1e9);
}

std::string clockText(std::uint64_t microseconds) {
  const std::uint64_t milliseconds = microseconds / 1000;
  const std::uint64_t minutes = milliseconds / 60'000;
  const std::string seconds = fmt::format("{:02}.{:03}", milliseconds / 1000 % 60, milliseconds % 1000);
  return minutes < 60 ? fmt::format("{}:{}", minutes, seconds)
                      : fmt::format("{}:{:02}:{}", minutes / 60, minutes % 60, seconds);
}

std::string shortest(float number) {
  return fmt::format("{}", number);
}

}  // namespace tarn::command
