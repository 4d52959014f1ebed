// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "base/base64.h"

#include <algorithm>

namespace tarn::command {

std::string base64(std::string_view bytes) {
  constexpr std::string_view digits = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
  std::string result;
  result.reserve((bytes.size() + 2) / 3 * 4);
  for (; !bytes.empty(); bytes.remove_prefix(std::min<std::size_t>(3, bytes.size()))) {
    const auto byteAt = [&](std::size_t index) {
      return index < bytes.size() ? static_cast<unsigned char>(bytes[index]) : 0U;
    };
    const unsigned group = byteAt(0) << 16 | byteAt(1) << 8 | byteAt(2);
    for (std::size_t digit = 0; digit < 4; ++digit) {
      result += digit > bytes.size() ? '=' : digits[group >> (18 - 6 * digit) & 0x3F];
    }
  }
  return result;
}

}  // namespace tarn::command
