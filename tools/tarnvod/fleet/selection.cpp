// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "fleet/selection.h"

namespace tarn::command {

bool Selection::takes(const VOD::DetectionData& frame) {
  const bool isDue = seen_++ % options_.every == 0;
  if (!options_.changesOnly) {
    return isDue;
  }
  Objects objects;
  for (const VOD::Data& detection : frame.detections) {
    objects.emplace(detection.objectId, detection.className);
  }
  const bool isChange = !frame.events.empty() || !sent_ || *sent_ != objects;
  if (isChange) {
    sent_ = std::move(objects);
  }
  return isChange;
}

}  // namespace tarn::command
