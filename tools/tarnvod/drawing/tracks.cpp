// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "drawing/drawing.h"

#include <algorithm>
#include <cstddef>
#include <utility>

namespace tarn::command {
namespace {

constexpr std::size_t mostPoints = 50'000;

/** Removes every second point of each stretch, but not its last one. */
void thinOut(std::vector<TrackPoint>& points) {
  std::size_t kept = 0;
  std::size_t inStretch = 0;
  for (std::size_t index = 0; index < points.size(); ++index) {
    inStretch = points[index].beginsStretch ? 0 : inStretch + 1;
    const bool endsStretch = index + 1 == points.size() || points[index + 1].beginsStretch;
    if (inStretch % 2 == 0 || endsStretch) {
      points[kept++] = points[index];
    }
  }
  points.resize(kept);
}

/** Makes tracks of what frames hold. */
class TrackCollector {
 public:
  TrackCollector(const SceneNames& names, const BoxConvention& boxes) : names_(names), boxes_(boxes) {}

  void add(const ScannedScene& scanned) {
    clock_.advanceTo(scanned.scene.timestamp());
    for (const auto& detection : scanned.scene.detections()) {
      add(detection, scanned.number);
    }
    for (const auto& event : scanned.scene.events()) {
      add(event);
    }
    result_.frames = scanned.number;
    result_.seconds = clock_.seconds();
  }

  Tracks take() { return std::move(result_); }

 private:
  void add(const ::VOD::Detection& detection, std::uint64_t frame) {
    const Box box =
        boxes_.toPicture({detection.coord_1(), detection.coord_2(), detection.coord_3(), detection.coord_4()});
    if (!box.isFinite()) {
      return;
    }
    // An object that was not seen for more frames than this was lost in between.
    constexpr std::uint64_t longestGap = 5;
    Track& track = trackOf(detection);
    const bool beginsStretch = track.points.empty() || frame - track.lastFrame > longestGap;
    const TrackPoint point{clock_.seconds(), box, beginsStretch};
    // A stretch has one of `distance_` points, and its last one.
    const bool replacesLast = !beginsStretch && track.inStretch % distance_ != 0;
    track.inStretch = beginsStretch ? 0 : track.inStretch + 1;
    track.lastFrame = frame;
    if (replacesLast) {
      track.points.back() = point;
      return;
    }
    track.points.push_back(point);
    if (++points_ > limit_) {
      thinOutAll();
    }
  }

  void add(const ::VOD::Event& event) {
    if (event.action() == ::VOD::EVENT_CONNECT) {
      for (const std::int32_t other : event.object_ids()) {
        result_.connected.emplace_back(static_cast<std::uint32_t>(event.object_id()),
                                       static_cast<std::uint32_t>(other));
      }
    }
  }

  Track& trackOf(const ::VOD::Detection& detection) {
    const auto [entry, isNew] = indexOf_.try_emplace(detection.object_id(), result_.tracks.size());
    if (isNew) {
      result_.tracks.push_back({detection.object_id(), names_.className(detection.class_id()), {}, 0, 0});
    }
    return result_.tracks[entry->second];
  }

  void thinOutAll() {
    distance_ *= 2;
    points_ = 0;
    for (Track& track : result_.tracks) {
      thinOut(track.points);
      points_ += track.points.size();
    }
    // Where there are mostly ends of stretches, little is gained: the next time has to be far away.
    limit_ = std::max(mostPoints, 2 * points_);
  }

  const SceneNames& names_;
  const BoxConvention& boxes_;
  RecordingClock clock_;
  Tracks result_;
  std::map<std::uint32_t, std::size_t> indexOf_;
  std::size_t points_ = 0;
  std::size_t limit_ = mostPoints;
  std::uint64_t distance_ = 1;
};

}  // namespace

Tracks collectTracks(const std::string& folder, const SceneNames& names, const BoxConvention& boxes,
                     DamageList& damage) {
  TrackCollector collector(names, boxes);
  const auto visit = [&collector](const ScannedScene& scanned) {
    collector.add(scanned);
    return true;
  };
  scanRecording(folder, visit, damage);
  return collector.take();
}

}  // namespace tarn::command
