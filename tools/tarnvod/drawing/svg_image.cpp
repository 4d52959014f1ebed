// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "base/errors.h"
#include "base/files.h"
#include "drawing/svg.h"

#include <algorithm>

namespace tarn::command::svg {
namespace {

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

}  // namespace

std::string mediaTypeOf(const std::string& path, std::string_view bytes) {
  if (bytes.substr(0, 8) == "\x89PNG\r\n\x1a\n") {
    return "image/png";
  }
  if (bytes.substr(0, 3) == "\xFF\xD8\xFF") {
    return "image/jpeg";
  }
  throw Failure(path + ": this is neither a PNG nor a JPEG image");
}

std::string embeddedImage(const std::string& path) {
  const std::string bytes = readFile(path, "a PNG or JPEG image");
  return "data:" + mediaTypeOf(path, bytes) + ";base64," + base64(bytes);
}

}  // namespace tarn::command::svg
