// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#ifndef TARNVOD_TESTS_SUPPORT_WIRE_BYTES_H
#define TARNVOD_TESTS_SUPPORT_WIRE_BYTES_H

#include <sstream>
#include <string>
#include <string_view>
#include <vector>

namespace tarn::test {

/** The bytes that are written here as two hexadecimal digits each, with spaces between: `wire("08 AC 02")`. */
inline std::string wire(const std::string& hexadecimal) {
  std::istringstream words(hexadecimal);
  std::string bytes;
  for (std::string word; words >> word;) {
    bytes.push_back(static_cast<char>(std::stoi(word, nullptr, 16)));
  }
  return bytes;
}

/** One field of the wire format: the tag, the contents' length if below 128, the contents. */
inline std::string field(const std::string& tag, std::string_view contents) {
  return wire(tag) + static_cast<char>(contents.size()) + std::string(contents);
}

/** Parses a copy that ends where its memory ends, so that a sanitizer sees every byte read beyond. */
template <typename Message>
bool parse(std::string_view bytes, Message& message) {
  const std::vector<char> copy(bytes.begin(), bytes.end());
  return message.ParseFromArray(copy.data(), static_cast<int>(copy.size()));
}

/** The message that these bytes hold, as far as they are one. */
template <typename Message>
Message parsed(std::string_view bytes) {
  Message message;
  static_cast<void>(parse(bytes, message));
  return message;
}

}  // namespace tarn::test

#endif
