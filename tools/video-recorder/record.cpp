// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "video-recorder/record.h"

#include "recording/recording_writer.h"
#include "video-recorder/background.h"
#include "video-recorder/clothing.h"
#include "video-recorder/messages.h"
#include "video-recorder/people_detector.h"
#include "video-recorder/progress.h"
#include "video-recorder/video.h"

#include <opencv2/core.hpp>

#include <algorithm>

namespace recorder {
namespace {

constexpr const char* backgroundFileName = "background.jpg";

void updateWardrobe(Wardrobe& wardrobe, const TrackedFrame& frame, const cv::Mat& picture) {
  for (const Reappearance& reappearance : frame.reappeared) {
    wardrobe.erase(reappearance.earlierId);
  }
  for (const std::uint32_t id : frame.gone) {
    wardrobe.erase(id);
  }
  for (const Person& person : frame.people) {
    const Clothing seen = clothingOf(picture, person.box);
    Clothing& known = wardrobe[person.id];
    known.upper.update(seen.upper);
    known.lower.update(seen.lower);
  }
}

int framesToRecord(const Options& options, const Video& video) {
  if (options.frames == 0 || video.length() == 0) {
    return std::max(options.frames, video.length());
  }
  return std::min(options.frames, video.length());
}

}  // namespace

int record(const Options& options, const std::atomic<bool>& isStopping) {
  Video video(options.input, options.firstFrame);
  std::optional<Video::Frame> frame = video.next();
  if (!frame) {
    throw VideoError(options.input + ": holds no picture that can be read");
  }
  vod::recording::RecordingWriter writer(options.output, describeDetector(options.camera).SerializeAsString(),
                                         std::nullopt);

  const PeopleDetector detector(options.smallestPerson);
  Tracker tracker;
  Wardrobe wardrobe;
  Background background;
  Progress progress(framesToRecord(options, video));
  int framesDone = 0;
  while (frame && !isStopping) {
    if (options.isMirrored) {
      cv::flip(frame->picture, frame->picture, 1);
    }
    background.add(frame->picture);
    const TrackedFrame tracked = tracker.update(detector.detect(frame->picture));
    updateWardrobe(wardrobe, tracked, frame->picture);
    writer.append(describeFrame(frame->timestamp, tracked, wardrobe).SerializeAsString(), vod::recording::Arrival{});
    progress.show(++framesDone, tracked.people.size());
    const bool isEnough = options.frames > 0 && framesDone >= options.frames;
    frame = isEnough ? std::nullopt : video.next();
  }
  background.write(options.output / backgroundFileName);
  return framesDone;
}

}  // namespace recorder
