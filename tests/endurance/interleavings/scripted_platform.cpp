// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "scripted_platform.h"

#include "scheduler.h"
#include "support/detector_builder.h"
#include "support/scene_builder.h"

#include <tarnvod/video_object_detection.pb.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <utility>

namespace tarn::test {
namespace {

ScriptedPlatform* present = nullptr;

constexpr std::uint32_t human = 1;

/** For threads that still run when the process ends. */
const std::string* neverDestroyed(std::string text) {
  return new std::string(std::move(text));
}

std::string detectorBytes() {
  ::VOD::DetectorInformation information;
  addClass(information, human, "human");
  addAttributeType(information, 1, "colour", {"red"});
  return information.SerializeAsString();
}

std::string frameBytes() {
  ::VOD::Scene scene;
  addAttribute(addDetection(scene, human), 1);
  return scene.SerializeAsString();
}

}  // namespace

ScriptedPlatform::ScriptedPlatform(Complaint complain) : complain_(std::move(complain)) {
  present = this;
}

ScriptedPlatform::~ScriptedPlatform() {
  for (const Subscriber* subscriber : subscribers_) {
    delete subscriber;
  }
}

ScriptedPlatform& ScriptedPlatform::current() {
  return *present;
}

void ScriptedPlatform::sendFrame(int camera, const std::function<void()>& beforeCallback) {
  static const std::string& frame = *neverDestroyed(frameBytes());
  if (const Subscriber* subscriber = subscribed(camera)) {
    const auto callback = subscriber->onDetection;
    void* const userData = subscriber->userData;
    Scheduler::point();
    beforeCallback();
    callback(reinterpret_cast<const std::uint8_t*>(frame.data()), static_cast<std::int32_t>(frame.size()), userData);
  }
}

void ScriptedPlatform::drop(int camera) {
  if (Subscriber* const subscriber = subscribed(camera)) {
    subscriber->subscribed = false;
    const auto callback = subscriber->onTeardown;
    void* const userData = subscriber->userData;
    Scheduler::point();
    callback(userData);
  }
}

int ScriptedPlatform::subscriptions(int camera) const {
  return static_cast<int>(
      std::count_if(subscribers_.begin(), subscribers_.end(), [camera](const Subscriber* subscriber) {
        return subscriber->camera == camera && subscriber->subscribed && !subscriber->deleted;
      }));
}

int ScriptedPlatform::notDeleted() const {
  return static_cast<int>(std::count_if(subscribers_.begin(), subscribers_.end(),
                                        [](const Subscriber* subscriber) { return !subscriber->deleted; }));
}

ScriptedPlatform::Subscriber* ScriptedPlatform::subscribed(int camera) {
  const auto found = std::find_if(subscribers_.begin(), subscribers_.end(), [camera](const Subscriber* subscriber) {
    return subscriber->camera == camera && subscriber->subscribed;
  });
  return found == subscribers_.end() ? nullptr : *found;
}

ScriptedPlatform::Subscriber& ScriptedPlatform::create(int camera, void* userData) {
  subscribers_.push_back(new Subscriber{camera, userData});
  return *subscribers_.back();
}

ScriptedPlatform::Subscriber& ScriptedPlatform::use(video_object_detection_subscriber_st* handle,
                                                    const char* function) {
  auto* const subscriber = reinterpret_cast<Subscriber*>(handle);
  const bool isKnown = std::find(subscribers_.begin(), subscribers_.end(), subscriber) != subscribers_.end();
  if (!isKnown || subscriber->deleted) {
    complain_(std::string(function) + " was called for a subscriber that does not exist");
  }
  return *subscriber;
}

int ScriptedPlatform::subscribe(video_object_detection_subscriber_st* handle) {
  Subscriber& subscriber = use(handle, "subscribe");
  if (refusals_ > 0) {
    --refusals_;
    return -1;
  }
  subscriber.subscribed = true;
  if (const auto action = std::exchange(duringSubscribe_, nullptr)) {
    action();
  }
  return 0;
}

void ScriptedPlatform::unsubscribe(video_object_detection_subscriber_st* handle) {
  use(handle, "unsubscribe").subscribed = false;
}

void ScriptedPlatform::remove(video_object_detection_subscriber_st* handle) {
  Subscriber& subscriber = use(handle, "delete");
  if (subscriber.subscribed) {
    complain_("a subscription was deleted that had neither been unsubscribed nor dropped");
  }
  subscriber.deleted = true;
}

}  // namespace tarn::test

using tarn::test::Scheduler;
using tarn::test::ScriptedPlatform;

namespace {

ScriptedPlatform& platform() {
  Scheduler::point();
  return ScriptedPlatform::current();
}

}  // namespace

extern "C" {

int video_object_detection_subscriber_create(video_object_detection_subscriber_st** subscriber, void* userData,
                                             int channel) {
  *subscriber = reinterpret_cast<video_object_detection_subscriber_st*>(&platform().create(channel + 1, userData));
  return 0;
}

int video_object_detection_subscriber_delete(video_object_detection_subscriber_st** subscriber) {
  platform().remove(*subscriber);
  *subscriber = nullptr;
  return 0;
}

int video_object_detection_subscriber_subscribe(video_object_detection_subscriber_st* subscriber) {
  return platform().subscribe(subscriber);
}

int video_object_detection_subscriber_unsubscribe(video_object_detection_subscriber_st* subscriber) {
  platform().unsubscribe(subscriber);
  return 0;
}

int video_object_detection_subscriber_set_get_detection_callback(
    video_object_detection_subscriber_st* subscriber, video_object_detection_subscriber_detection_callback callback) {
  platform().use(subscriber, "set_get_detection_callback").onDetection = callback;
  return 0;
}

int video_object_detection_subscriber_set_teardown_callback(
    video_object_detection_subscriber_st* subscriber, video_object_detection_subscriber_teardown_callback callback) {
  platform().use(subscriber, "set_teardown_callback").onTeardown = callback;
  return 0;
}

int video_object_detection_subscriber_set_receive_empty_hits(video_object_detection_subscriber_st* subscriber,
                                                             bool /*enabled*/) {
  platform().use(subscriber, "set_receive_empty_hits");
  return 0;
}

int video_object_detection_subscriber_use_channel_configuration(video_object_detection_subscriber_st* subscriber,
                                                                bool /*enabled*/) {
  platform().use(subscriber, "use_channel_configuration");
  return 0;
}

int video_object_detection_set_channel_configuration(int /*channel*/, const uint8_t* /*configuration*/,
                                                     size_t /*length*/, char** /*error*/) {
  platform();
  return 0;
}

int video_object_detection_subscriber_get_information(video_object_detection_subscriber_st* subscriber,
                                                      uint8_t** information, size_t* length, char** /*error*/) {
  static const std::string& bytes = *tarn::test::neverDestroyed(tarn::test::detectorBytes());
  platform().use(subscriber, "get_information");
  *information = static_cast<uint8_t*>(std::malloc(bytes.size()));
  std::memcpy(*information, bytes.data(), bytes.size());
  *length = bytes.size();
  return 0;
}

int video_object_detection_subscriber_get_nbr_channels(uint32_t* count) {
  *count = 2;
  return 0;
}

int video_object_detection_subscriber_get_nbr_channels_simultaneously(uint32_t* count) {
  *count = 2;
  return 0;
}

int video_object_detection_subscriber_get_version(int* major, int* minor) {
  *major = 1;
  *minor = 0;
  return 0;
}

bool video_object_detection_subscriber_service_is_enabled(void) {
  return true;
}
}
