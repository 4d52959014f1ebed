// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "recordings/recorded_frames.h"

#include "base/errors.h"
#include "base/stop_signal.h"
#include "recordings/recording_scan.h"
#include "recordings/recording_summary.h"
#include "recordings/scene_record.h"
#include "records/frame_json.h"

#include <nlohmann/json.hpp>
#include <recording/recording_reader.h>
#include <recording/segments.h>

#include <algorithm>
#include <fstream>
#include <memory>
#include <utility>
#include <variant>

namespace tarn::command {
namespace {

/** The recordings that are viewed stand for one camera. */
constexpr int camera = 1;

SceneNames namesOf(const std::filesystem::path& folder) {
  try {
    return SceneNames(vod::recording::readDetectorInformation(folder));
  } catch (const vod::recording::RecordingError&) {
    return {};  // the overview lists it as damage; objects are then labelled with class numbers
  }
}

/** The frame as `watch --json` prints it; without its contents where they are too many to be viewed. */
std::string frameOf(const ::VOD::Scene& scene, const SceneNames& names) {
  const std::size_t bytes = scene.ByteSizeLong();
  if (bytes <= RecordedFrames::largestFrame) {
    return frameJson(recordOf(scene, names), camera);
  }
  ::VOD::Scene empty;
  empty.set_timestamp(scene.timestamp());
  std::string frame = frameJson(recordOf(empty, names), camera);
  frame.pop_back();
  return frame.append(",\"omittedBytes\":").append(std::to_string(bytes)).append("}");
}

}  // namespace

RecordedFrames::RecordedFrames(const std::filesystem::path& folder) : folder_(folder), names_(namesOf(folder)) {
  const RecordingSummary summary = summarizeRecording(folder);
  damage_ = summary.damage;
  overview_ = toJson(summary);
  scan();
}

void RecordedFrames::scan() {
  RecordingClock clock;
  Json seconds = Json::array_t();
  seconds.get_ref<Json::array_t&>().reserve(std::min<std::size_t>(mostFrames, overview_["frames"].get<std::size_t>()));
  Json events = Json::array();
  const auto visit = [&](const ScannedScene& scanned) {
    clock.advanceTo(scanned.scene.timestamp());
    for (const VOD::VodEvent& event : eventsOf(scanned.scene)) {
      events.push_back(toJson(event));
      events.back()["frame"] = places_.size();
    }
    seconds.push_back(static_cast<float>(clock.seconds()));
    places_.push_back({scanned.part, scanned.offset});
    return places_.size() < mostFrames && !stopRequested();
  };
  parts_ = vod::recording::partsOf(folder_);
  DamageList damage;  // listed by the overview
  scanRecording(folder_, visit, damage);
  overview_["frameSeconds"] = std::move(seconds);
  overview_["eventList"] = std::move(events);
}

RecordedFrames::Excerpt RecordedFrames::frames(std::uint64_t first, std::uint64_t count) const {
  Excerpt excerpt{0, "["};
  std::size_t bytes = 0;
  const std::uint64_t begin = std::min<std::uint64_t>(places_.size(), first);
  const std::uint64_t end = std::min<std::uint64_t>(places_.size(), begin + std::min<std::uint64_t>(count, mostAtOnce));
  for (std::uint64_t index = begin; index < end && bytes < mostBytesAtOnce; ++index) {
    const ::VOD::Scene scene = sceneAt(places_[static_cast<std::size_t>(index)]);
    bytes += scene.ByteSizeLong();
    excerpt.json.append(index == begin ? "" : ",").append(frameOf(scene, names_));
    ++excerpt.count;
  }
  excerpt.json += "]\n";
  return excerpt;
}

::VOD::Scene RecordedFrames::sceneAt(const Place& place) const {
  const std::string file = (parts_.at(place.part) / vod::recording::scenesFileName).string();
  auto stream = std::make_unique<std::ifstream>(file, std::ios::binary);
  stream->seekg(place.offset);
  const auto next = vod::recording::RecordingReader(std::move(stream), file).next();
  const auto* recorded = std::get_if<vod::recording::RecordedScene>(&next);
  ::VOD::Scene scene;
  if (recorded == nullptr || !scene.ParseFromString(recorded->bytes)) {
    throw Failure(file + ": offset " + std::to_string(place.offset) + ": the scene that was here is gone");
  }
  return scene;
}

}  // namespace tarn::command
