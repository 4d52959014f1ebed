// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "base/base64.h"
#include "base/errors.h"
#include "base/files.h"
#include "drawing/svg.h"

namespace tarn::command::svg {
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
