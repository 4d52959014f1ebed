// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "replay/scene_source.h"

#include <tarnvod/video_object_detection.pb.h>

namespace vod::host {

std::uint64_t timestampOf(const std::string& scene) {
  VOD::Scene message;
  static_cast<void>(message.ParseFromString(scene));
  return message.timestamp();
}

}  // namespace vod::host
