// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "diagnostics.h"

#include <cstdio>

namespace vod::host {

void report(const std::string& what) {
  const std::string line = "video_object_detection_subscriber: " + what + '\n';
  // In one piece, so that lines of several threads do not mix.
  std::fwrite(line.data(), 1, line.size(), stderr);
}

}  // namespace vod::host
