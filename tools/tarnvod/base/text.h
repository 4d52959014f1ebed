// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#ifndef TARNVOD_COMMAND_TEXT_H
#define TARNVOD_COMMAND_TEXT_H

#include <cstddef>
#include <cstdint>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

/** Text for people: names come from elsewhere and may hold anything, columns have a width. */
namespace tarn::command {

/** The text with control characters and bytes that are not UTF-8 replaced by U+FFFD: safe to show on a terminal. */
std::string printable(std::string_view text);

/** Whether the user's locale, by its name in the environment, uses UTF-8. */
bool localeIsUtf8();

/** The text in ASCII, in the same columns: bars and ellipses in similar characters, all else as question marks. */
std::string toAscii(std::string_view text);

/** How many columns a printable text takes on a terminal. */
std::size_t displayWidth(std::string_view text);

/** The text in exactly this many columns: filled up with spaces, or cut with an ellipsis. */
std::string fitted(std::string_view text, std::size_t columns);

/** As `fitted`, but flush right when there is room. */
std::string fittedRight(std::string_view text, std::size_t columns);

/** The text cut, where it is longer, to this many columns; the last is then an ellipsis. */
std::string cut(std::string_view text, std::size_t columns);

/** The number with this many digits after the point. */
std::string fixed(double number, int digits);

/** "1 frame", "2 frames". */
std::string counted(std::uint64_t count, const std::string& noun);

/** A number of bytes for people: "812 B", "1.4 MB". */
std::string byteSize(std::uint64_t bytes);

/** A time for people, from microseconds: minutes and seconds, "1:07.250"; hours where there are any, "2:01:07.250". */
std::string clockText(std::uint64_t microseconds);

/** The shortest decimal number that reads back as the same float. */
std::string shortest(float number);

/** The text on lines of at most `columns`, broken at spaces; all but the first are indented. Longer words stay whole. */
std::string folded(std::string_view text, std::size_t columns, std::size_t indent);

/** The texts with a separator between them. */
template <typename Texts>
std::string joined(const Texts& texts, std::string_view separator) {
  std::string result;
  for (const auto& text : texts) {
    if (!result.empty()) {
      result += separator;
    }
    result += text;
  }
  return result;
}

/** How a value of the library prints itself: an enumeration's name. */
template <typename Value>
std::string nameOf(const Value& value) {
  std::ostringstream out;
  out << value;
  return out.str();
}

}  // namespace tarn::command

#endif
