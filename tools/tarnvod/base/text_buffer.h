// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#ifndef TARNVOD_COMMAND_TEXT_BUFFER_H
#define TARNVOD_COMMAND_TEXT_BUFFER_H

#include <algorithm>
#include <charconv>
#include <cstddef>
#include <string_view>
#include <type_traits>
#include <vector>

namespace tarn::command {

/** Text that is put together from many small pieces: an export has millions of them. */
class TextBuffer {
 public:
  TextBuffer() = default;
  TextBuffer(const TextBuffer&) = delete;
  TextBuffer& operator=(const TextBuffer&) = delete;

  void append(char letter) {
    makeRoom(1);
    *end_++ = letter;
  }

  void append(std::string_view text) {
    makeRoom(text.size());
    end_ = std::copy(text.begin(), text.end(), end_);
  }

  /** An integer, or the shortest text that reads back as the same floating-point number; and a letter. */
  template <typename Number>
  void append(Number number, char after) {
    appendNumber(number);
    *end_++ = after;
  }

  template <typename Number>
  std::enable_if_t<std::is_arithmetic_v<Number>> append(Number number) {
    appendNumber(number);
  }

  /** The number with this many digits after the point, rounded to the nearest. */
  void appendFixed(double number, int digits) {
    constexpr std::size_t longest = 400;  // the largest number has 309 digits before the point
    makeRoom(longest);
    end_ = std::to_chars(end_, limit_, number, std::chars_format::fixed, digits).ptr;
  }

  /** Removes what is behind the first `size` bytes. */
  void cutTo(std::size_t size) { end_ = bytes_.data() + std::min(this->size(), size); }
  void clear() { end_ = bytes_.data(); }

  std::size_t size() const { return static_cast<std::size_t>(end_ - bytes_.data()); }
  /** Valid until the next change. */
  std::string_view text() const { return {bytes_.data(), size()}; }

 private:
  template <typename Number>
  void appendNumber(Number number) {
    constexpr std::size_t longest = 32;
    makeRoom(longest + 1);
    end_ = std::to_chars(end_, end_ + longest, number).ptr;
  }

  void makeRoom(std::size_t count) {
    if (static_cast<std::size_t>(limit_ - end_) < count) {
      grow(count);
    }
  }

  void grow(std::size_t count) {
    const std::size_t used = size();
    bytes_.resize(std::max(2 * bytes_.size(), used + count));
    end_ = bytes_.data() + used;
    limit_ = bytes_.data() + bytes_.size();
  }

  std::vector<char> bytes_ = std::vector<char>(1024);
  char* end_ = bytes_.data();
  char* limit_ = bytes_.data() + bytes_.size();
};

}  // namespace tarn::command

#endif
