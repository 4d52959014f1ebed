// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "rehearsal/scene_player.h"

#include "messages/detector_information_check.h"
#include "recording/recording_reader.h"

#include <algorithm>
#include <utility>

namespace vod::host {

namespace {

/** Few, so that each class of the recording is seen again soon. */
constexpr std::size_t scenesPerPass = 100;

std::vector<::VOD::Scene> readScenes(const std::string& folder) {
  std::vector<::VOD::Scene> scenes;
  recording::RecordingReader reader(folder);
  while (scenes.size() < scenesPerPass) {
    const recording::NextScene next = reader.next();
    if (const auto* const recorded = std::get_if<recording::RecordedScene>(&next)) {
      ::VOD::Scene scene;
      if (scene.ParseFromString(recorded->bytes)) {
        scenes.push_back(std::move(scene));
      }
    } else if (reader.atEnd()) {
      break;
    }
  }
  if (scenes.empty()) {
    scenes.emplace_back();
  }
  return scenes;
}

std::uint32_t largestId(const std::vector<::VOD::Scene>& scenes) {
  std::uint32_t largest = 0;
  for (const ::VOD::Scene& scene : scenes) {
    for (const ::VOD::Detection& detection : scene.detections()) {
      largest = std::max(largest, detection.object_id());
    }
    for (const ::VOD::Event& event : scene.events()) {
      largest = std::max(largest, static_cast<std::uint32_t>(event.object_id()));
    }
  }
  return largest;
}

}  // namespace

ScenePlayer::ScenePlayer(const std::string& folder)
    : scenes_(readScenes(folder)),
      firstTimestamp_(scenes_.front().timestamp()),
      lastTimestamp_(firstTimestamp_),
      idsPerPass_(largestId(scenes_) + 1) {
  static_cast<void>(detector_.ParseFromString(readValidDetectorInformation(folder)));
  for (const ::VOD::ObjectClass& objectClass : detector_.object_classes()) {
    classIds_ = std::max(classIds_, objectClass.id() + 1);
  }
}

std::string ScenePlayer::next(std::chrono::microseconds now) {
  ::VOD::Scene scene = scenes_[position_];
  if (faults.renumbering > 0 || restarts_) {
    endAllObjects(scene);
  }
  renumber(scene);
  if (faults.repeating == 0) {
    lastTimestamp_ = firstTimestamp_ + static_cast<std::uint64_t>(now.count());
  }
  scene.set_timestamp(lastTimestamp_ + static_cast<std::uint64_t>(faults.jump.count()));
  follow(scene);
  dropLostClasses(scene);
  changeClasses(scene);
  if (faults.empty > 0) {
    scene.clear_detections();
  }
  goOn();
  std::string bytes = scene.SerializeAsString();
  return faults.damaged > 0 ? damaged(std::move(bytes)) : bytes;
}

void ScenePlayer::goOn() {
  ++sent_;
  position_ = (position_ + 1) % scenes_.size();
  restarts_ = position_ == 0;
}

/** As a detector does that starts to follow objects from the beginning. */
void ScenePlayer::endAllObjects(::VOD::Scene& scene) {
  idOffset_ += idsPerPass_;
  for (const std::uint32_t object : std::exchange(objects_, {})) {
    ::VOD::Event& event = *scene.add_events();
    event.set_action(::VOD::EVENT_DELETE);
    event.set_object_id(static_cast<std::int32_t>(object - idOffset_));  // `renumber` adds it again.
  }
}

void ScenePlayer::renumber(::VOD::Scene& scene) const {
  const auto renumbered = [this](std::int32_t id) {
    return static_cast<std::int32_t>(static_cast<std::uint32_t>(id) + idOffset_);
  };
  for (::VOD::Detection& detection : *scene.mutable_detections()) {
    detection.set_object_id(detection.object_id() + idOffset_);
  }
  for (::VOD::Event& event : *scene.mutable_events()) {
    event.set_object_id(renumbered(event.object_id()));
    for (int& id : *event.mutable_object_ids()) {
      id = renumbered(id);
    }
  }
}

void ScenePlayer::follow(const ::VOD::Scene& scene) {
  for (const ::VOD::Event& event : scene.events()) {
    objects_.erase(static_cast<std::uint32_t>(event.object_id()));
    for (const int id : event.object_ids()) {
      objects_.erase(static_cast<std::uint32_t>(id));
    }
  }
  for (const ::VOD::Detection& detection : scene.detections()) {
    objects_.insert(detection.object_id());
  }
}

void ScenePlayer::dropLostClasses(::VOD::Scene& scene) const {
  if (faults.lostClasses.empty()) {
    return;
  }
  auto& detections = *scene.mutable_detections();
  detections.erase(std::remove_if(detections.begin(), detections.end(),
                                  [this](const ::VOD::Detection& detection) {
                                    return faults.lostClasses.count(detection.class_id()) > 0;
                                  }),
                   detections.end());
}

void ScenePlayer::changeClasses(::VOD::Scene& scene) const {
  for (::VOD::Detection& detection : *scene.mutable_detections()) {
    detection.set_class_id(presentClassId(detection.class_id()));
    for (::VOD::Classification& candidate : *detection.mutable_classifications()) {
      if (candidate.has_class_case() == ::VOD::Classification::kClass) {
        candidate.set_class_(presentClassId(candidate.class_()));
      }
    }
  }
}

std::string ScenePlayer::damaged(std::string bytes) const {
  switch (sent_ % 3) {
    case 0:
      bytes.resize(bytes.size() / 2);
      return bytes;
    case 1:
      for (std::size_t i = 0; i < bytes.size(); i += 7) {
        bytes[i] = static_cast<char>(~bytes[i]);
      }
      return bytes;
    default:
      return {};
  }
}

std::string ScenePlayer::detectorInformation() const {
  ::VOD::DetectorInformation information = detector_;
  auto& classes = *information.mutable_object_classes();
  classes.erase(std::remove_if(classes.begin(), classes.end(),
                               [this](const ::VOD::ObjectClass& objectClass) {
                                 return faults.lostClasses.count(objectClass.id()) > 0;
                               }),
                classes.end());
  for (::VOD::ObjectClass& objectClass : classes) {
    objectClass.set_id(presentClassId(objectClass.id()));
  }
  return information.SerializeAsString();
}

std::uint32_t ScenePlayer::presentClassId(std::uint32_t recorded) const {
  return recorded + faults.classChanges * classIds_;
}

std::uint32_t ScenePlayer::classAt(int place) const {
  const int count = detector_.object_classes_size();
  return count == 0 ? 0 : detector_.object_classes((place - 1) % count).id();
}

}  // namespace vod::host
