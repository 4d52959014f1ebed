// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "diagnostics.h"

#include <cstdio>

namespace vod::host {

// Each line is printed with one call, so that those of several threads do not mix. A failure to print is ignored: there
// is no other place to report it.

void report(const std::string& what) {
  static_cast<void>(std::fprintf(stderr, "video_object_detection_subscriber: %s\n", what.c_str()));
}

void reportFailure(const char* function, const char* what) noexcept {
  static_cast<void>(std::fprintf(stderr, "video_object_detection_subscriber: %s: %s\n", function, what));
}

void ChannelErrors::failed(Function function, const std::string& what) {
  std::string& reported = reported_[function];
  if (reported != what) {
    report(what);
    reported = what;
  }
}

}  // namespace vod::host
