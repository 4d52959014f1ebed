// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "drawing/drawing.h"

namespace tarn::command {
Tracks collectTracks(const std::string& folder, const SceneNames& names, const BoxConvention& boxes,
                     DamageList& damage) {
  Tracks result;
  RecordingClock clock;
  std::map<std::uint32_t, std::size_t> indexOf;
  const auto visit = [&](const ScannedScene& scanned) {
    clock.advanceTo(scanned.scene.timestamp());
    result.frames = scanned.number;
    result.seconds = clock.seconds();
    for (const auto& detection : scanned.scene.detections()) {
      const Box box =
          boxes.toPicture({detection.coord_1(), detection.coord_2(), detection.coord_3(), detection.coord_4()});
      if (!box.isFinite()) {
        continue;
      }
      const auto [entry, isNew] = indexOf.try_emplace(detection.object_id(), result.tracks.size());
      if (isNew) {
        result.tracks.push_back({detection.object_id(), names.className(detection.class_id()), {}});
      }
      result.tracks[entry->second].points.push_back({scanned.number, clock.seconds(), box});
    }
    for (const auto& event : scanned.scene.events()) {
      if (event.action() == ::VOD::EVENT_CONNECT) {
        for (const std::int32_t other : event.object_ids()) {
          result.connected.emplace_back(static_cast<std::uint32_t>(event.object_id()),
                                        static_cast<std::uint32_t>(other));
        }
      }
    }
    return true;
  };
  scanRecording(folder, visit, damage);
  return result;
}

}  // namespace tarn::command
