// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "cameras/raw_subscription.h"

#include "base/errors.h"

#include <cstdlib>
#include <utility>
#include <vector>

namespace tarn::command {
namespace {

/** Reads the bytes; a template, since the integer types of this function are the platform's. */
template <typename Byte, typename Length, typename Error>
int readInformation(int (*getInformation)(video_object_detection_subscriber_st*, Byte**, Length*, Error),
                    video_object_detection_subscriber_st* subscriber, std::string& information) {
  Byte* bytes = nullptr;
  Length length = 0;
  const int result = getInformation(subscriber, &bytes, &length, nullptr);
  if (result == 0 && bytes != nullptr) {
    const std::unique_ptr<Byte, decltype(&std::free)> owner(bytes, &std::free);
    information.assign(bytes, bytes + length);
  }
  return result;
}

}  // namespace

/**
 * Taps are kept until the process ends: whether a callback can still run after `delete` is the platform's choice, and
 * there are only as many as subscriptions were dropped.
 */
RawSubscription::Tap* RawSubscription::makeTap(int camera, std::shared_ptr<SceneQueue> scenes) {
  static auto& taps = *new std::vector<std::unique_ptr<Tap>>;
  return taps.emplace_back(new Tap{std::move(scenes), camera, {}}).get();
}

RawSubscription::RawSubscription(int camera, std::shared_ptr<SceneQueue> scenes)
    : camera_(camera), tap_(makeTap(camera, std::move(scenes))) {
  check(video_object_detection_subscriber_create(&subscriber_, tap_, camera - 1), "does not answer");
}

RawSubscription::~RawSubscription() {
  // The results say nothing that could be acted on: the process is about to end or to subscribe again.
  if (!tap_->dropped) {
    video_object_detection_subscriber_unsubscribe(subscriber_);
  }
  video_object_detection_subscriber_delete(&subscriber_);
}

std::string RawSubscription::readDetectorInformation() const {
  std::string information;
  check(readInformation(video_object_detection_subscriber_get_information, subscriber_, information),
        "does not describe its detector");
  return information;
}

void RawSubscription::subscribe() {
  // Generic parameters: the integer types of these callbacks are the platform's.
  const auto onScene = [](const auto* buffer, auto length, void* userData) {
    if (buffer != nullptr && length >= 0) {
      auto& tap = *static_cast<Tap*>(userData);
      std::string bytes(buffer, buffer + length);
      const std::size_t size = bytes.size();
      tap.scenes->push({std::move(bytes), vod::recording::arrivalNow(), tap.camera}, size);
    }
  };
  const auto onTeardown = [](void* userData) { static_cast<Tap*>(userData)->dropped = true; };
  check(video_object_detection_subscriber_set_get_detection_callback(subscriber_, onScene), "refuses the callback");
  check(video_object_detection_subscriber_set_teardown_callback(subscriber_, onTeardown), "refuses the callback");
  check(video_object_detection_subscriber_set_receive_empty_hits(subscriber_, true), "refuses to send empty frames");
  check(video_object_detection_subscriber_subscribe(subscriber_), "refuses the subscription");
}

void RawSubscription::check(int result, const char* what) const {
  if (result != 0) {
    throw Failure("camera " + std::to_string(camera_) + ": the service " + what + " (code " + std::to_string(result) +
                  "); check that it runs and that this camera exists");
  }
}

}  // namespace tarn::command
