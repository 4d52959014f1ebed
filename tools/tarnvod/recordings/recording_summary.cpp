// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "recordings/recording_summary.h"

#include <string>

namespace tarn::command {
namespace {

/** Takes note of scenes, one after the other. */
class Summarizer {
 public:
  Summarizer(RecordingSummary& summary, const SceneNames& names) : summary_(summary), names_(names) {}

  void add(const ScannedScene& scanned) {
    const ::VOD::Scene& scene = scanned.scene;
    clock_.advanceTo(scene.timestamp());
    summary_.duration = clock_.seconds();
    summary_.restarts = clock_.restarts();
    ++summary_.frames;
    summary_.bytes += scanned.bytes.size();
    for (const auto& detection : scene.detections()) {
      addDetection(scanned, detection);
    }
    for (const auto& event : scene.events()) {
      summary_.deleted += event.action() == ::VOD::EVENT_DELETE ? 1U : 0U;
      summary_.connected += event.action() == ::VOD::EVENT_CONNECT ? 1U : 0U;
    }
  }

 private:
  void addDetection(const ScannedScene& scanned, const ::VOD::Detection& detection) {
    if (!names_.knowsClass(detection.class_id()) && unknownClasses_.insert(detection.class_id()).second) {
      complain(scanned, "holds class id " + std::to_string(detection.class_id()) +
                            ", which the detector information does not name");
    }
    const std::string className = names_.className(detection.class_id());
    const double now = clock_.seconds();
    ++summary_.detectionsByClass[className];
    ObjectLife& life =
        summary_.objects.try_emplace(detection.object_id(), ObjectLife{className, now, now, 0, scanned.number, 0})
            .first->second;
    life.last = now;
    life.lastFrame = scanned.number;
    ++life.frames;
  }

  void complain(const ScannedScene& scanned, const std::string& what) {
    const auto file = std::filesystem::path(summary_.folder) / vod::recording::scenesFileName;
    summary_.damage.add({file.string(), scanned.offset, "frame " + std::to_string(scanned.number) + ' ' + what});
  }

  RecordingSummary& summary_;
  const SceneNames& names_;
  RecordingClock clock_;
  std::set<std::uint32_t> unknownClasses_;
};

std::string withoutPrefix(const std::string& text, const std::string& prefix) {
  return text.compare(0, prefix.size(), prefix) == 0 ? text.substr(prefix.size()) : text;
}

}  // namespace

double RecordingSummary::rate() const {
  return duration > 0 ? static_cast<double>(frames - 1) / duration : 0;
}

std::map<std::string, std::uint64_t> RecordingSummary::objectsByClass() const {
  std::map<std::string, std::uint64_t> counts;
  for (const auto& entry : detectionsByClass) {
    counts[entry.first] = 0;  // an object counts for the class in which it was first seen
  }
  for (const auto& entry : objects) {
    ++counts[entry.second.className];
  }
  return counts;
}

SceneNames readSceneNames(const std::filesystem::path& folder, DamageList& damage) {
  const std::string file = (folder / vod::recording::detectorInformationFileName).string();
  try {
    const std::string bytes = vod::recording::readDetectorInformation(folder);
    if (!::VOD::DetectorInformation().ParseFromString(bytes)) {
      damage.add({file, 0, "this is not a serialized VOD.DetectorInformation"});
    }
    return SceneNames(bytes);
  } catch (const vod::recording::RecordingError& error) {
    damage.add({file, 0, withoutPrefix(error.what(), file + ": ")});
    return {};
  }
}

RecordingSummary summarizeRecording(const std::filesystem::path& folder) {
  RecordingSummary summary;
  summary.folder = folder.string();
  const SceneNames names = readSceneNames(folder, summary.damage);
  Summarizer summarizer(summary, names);
  const auto visit = [&summarizer](const ScannedScene& scanned) {
    summarizer.add(scanned);
    return true;
  };
  scanRecording(folder, visit, summary.damage);
  return summary;
}

}  // namespace tarn::command
