// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "recordings/recording_summary.h"

#include <string>
#include <unordered_map>

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
  /** A class's name and the number of its detections. */
  using ClassCount = std::map<std::string, std::uint64_t>::value_type;

  void addDetection(const ScannedScene& scanned, const ::VOD::Detection& detection) {
    ClassCount& count = countOf(scanned, detection.class_id());
    ++count.second;
    ObjectLife& life = lifeOf(detection.object_id(), count.first, scanned.number);
    life.last = clock_.seconds();
    life.lastFrame = scanned.number;
    ++life.frames;
  }

  ClassCount& countOf(const ScannedScene& scanned, std::uint32_t classId) {
    const auto found = counts_.find(classId);
    if (found != counts_.end()) {
      return *found->second;
    }
    if (!names_.knowsClass(classId)) {
      complain(scanned, "holds class id " + std::to_string(classId) + ", which the detector information does not name");
    }
    ClassCount& count = *summary_.detectionsByClass.try_emplace(names_.className(classId), 0).first;
    counts_.emplace(classId, &count);
    return count;
  }

  ObjectLife& lifeOf(std::uint32_t objectId, const std::string& className, std::uint64_t frame) {
    const auto found = summary_.objects.find(objectId);
    if (found != summary_.objects.end()) {
      return found->second;
    }
    const double now = clock_.seconds();
    return summary_.objects.emplace(objectId, ObjectLife{className, now, now, 0, frame, 0}).first->second;
  }

  void complain(const ScannedScene& scanned, const std::string& what) {
    const auto file = std::filesystem::path(summary_.folder) / vod::recording::scenesFileName;
    summary_.damage.add({file.string(), scanned.offset, "frame " + std::to_string(scanned.number) + ' ' + what});
  }

  RecordingSummary& summary_;
  const SceneNames& names_;
  RecordingClock clock_;
  /** By the classes' ids. */
  std::unordered_map<std::uint32_t, ClassCount*> counts_;
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
