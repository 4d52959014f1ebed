// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

// make_sample_recording FOLDER: writes the recording on which the examples are tried. It lasts two and a bit minutes,
// with a frame every half second:
//
// - In the first minute human 1 walks through the upper half of the image from left to right; car 3 stands at the lower
// right.
// - In the second minute human 2, recognised as human 1 again, walks back; human 4, whom the detector is never sure of,
// stands
//   at the lower left.

#include "recording/recording_writer.h"

#include <tarnvod/video_object_detection.pb.h>

#include <cstdint>
#include <exception>
#include <iostream>

namespace {

constexpr std::uint64_t frameInterval = 500'000;  // microseconds
constexpr int framesPerMinute = 120;
constexpr std::uint32_t human = 1;
constexpr std::uint32_t car = 2;

using Status = VOD::Detection_DetectionStatus;

std::string detector() {
  VOD::DetectorInformation information;
  for (const auto& [id, name] : {std::pair{human, "Human"}, std::pair{car, "Car"}}) {
    VOD::ObjectClass& added = *information.add_object_classes();
    added.set_id(id);
    added.set_name(name);
  }
  return information.SerializeAsString();
}

/** Adds an object whose box, a tenth of the image wide and high, has its centre here. */
void add(VOD::Scene& scene, std::uint32_t id, std::uint32_t classId, float x, float y, Status status) {
  VOD::Detection& detection = *scene.add_detections();
  detection.set_coord_1(x - 0.05F);
  detection.set_coord_2(y - 0.05F);
  detection.set_coord_3(x + 0.05F);
  detection.set_coord_4(y + 0.05F);
  detection.set_object_id(id);
  detection.set_class_id(classId);
  detection.set_score(80);
  detection.set_status(status);
}

void addEvent(VOD::Scene& scene, VOD::EventAction action, int object) {
  VOD::Event& event = *scene.add_events();
  event.set_action(action);
  event.set_object_id(object);
}

VOD::Scene sceneOf(int frame) {
  VOD::Scene scene;
  scene.set_timestamp(static_cast<std::uint64_t>(frame) * frameInterval);
  const int minute = frame / framesPerMinute;
  const float walked = 0.1F + 0.8F * (static_cast<float>(frame % framesPerMinute) + 0.5F) / framesPerMinute;
  if (minute == 0) {
    const bool isSure = frame >= 4;
    add(scene, 1, human, walked, 0.3F,
        isSure ? VOD::Detection::TRACKED_CONFIDENT : VOD::Detection::TRACKED_UNCONFIDENT);
    add(scene, 3, car, 0.8F, 0.8F, VOD::Detection::UNTRACKED);
  } else if (minute == 1) {
    add(scene, 2, human, 1 - walked, 0.3F, VOD::Detection::TRACKED_CONFIDENT);
    add(scene, 4, human, 0.2F, 0.8F, VOD::Detection::TRACKED_UNCONFIDENT);
  }
  if (frame == framesPerMinute) {
    addEvent(scene, VOD::EVENT_DELETE, 1);
    addEvent(scene, VOD::EVENT_CONNECT, 2);
    scene.mutable_events(1)->add_object_ids(1);
  } else if (frame == 2 * framesPerMinute) {
    addEvent(scene, VOD::EVENT_DELETE, 2);
    addEvent(scene, VOD::EVENT_DELETE, 4);
  }
  return scene;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) {
    std::cerr << "usage: make_sample_recording FOLDER\n";
    return 2;
  }
  try {
    vod::recording::RecordingWriter writer(argv[1], detector());
    for (int frame = 0; frame <= 2 * framesPerMinute; ++frame) {
      writer.append(sceneOf(frame).SerializeAsString());
    }
  } catch (const std::exception& problem) {
    std::cerr << "make_sample_recording: " << problem.what() << '\n';
    return 1;
  }
  return 0;
}
