// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

// Every function of the class, in the order of its header.

#include "detector-information/detector_conversion.h"
#include "handler/attribute_names.h"
#include "handler/camera_detector.h"
#include "handler/handler_state.h"
#include "handler/retry_thread.h"
#include "handler/subscribe_channel.h"
#include "support/platform_types.h"

#include <syslog.h>
#include <tarnvod/handler.h>

#include <utility>

namespace tarn::VOD {
namespace {

/** The camera of the queries that take no camera. */
constexpr int firstCamera = 1;

/** Takes a camera's record out of the registry: the pending one, or else the active one. */
SubscriptionMap::node_type takeRecord(int camera) {
  const HandlerLock lock(handlerMutex);
  if (!lock.isOpen()) {
    return {};
  }
  if (SubscriptionMap::node_type pending = registry->pending.extract(camera)) {
    return pending;
  }
  return registry->active.extract(camera);
}

/**
 * Destroys a camera's pending record with the application's callable, without the lock: destructors may take the
 * application's own. Meanwhile another thread may park the camera again.
 */
void destroyPending(HandlerLock& lock, int camera) TARNVOD_REQUIRES(handlerMutex) {
  while (lock.isOpen()) {
    SubscriptionMap::node_type pending = registry->pending.extract(camera);
    if (!pending) {
      return;
    }
    lock.unlockDuring([&pending] { pending = {}; });
  }
}

/** Ends a subscription at the platform; whatever fails there, the rest is still done. */
void endSubscription(ChannelSubscription& subscription) {
  if (video_object_detection_subscriber_unsubscribe(subscription.subscriber) != 0) {
    syslog(LOG_WARNING, "Failed to disconnect to vod for camera %i\n", subscription.request.camera);
  }
  if (video_object_detection_subscriber_delete(&subscription.subscriber) != 0) {
    syslog(LOG_WARNING, "Failed to destroy a vod subscription for camera %i\n", subscription.request.camera);
  }
}

/** Asks the platform for a number; 0, and the failure in the system log, when it does not answer. */
template <typename Query>
std::uint32_t askForCount(Query query, const char* failure) {
  OutParameterType<std::remove_pointer_t<Query>, 0> count = 0;
  if (isClosed()) {  // may be uncovered: only at the end of the process, after the figures are written
    return 0;        // may be uncovered: as above
  }
  if (query(&count) != 0) {
    syslog(LOG_ERR, "%s\n", failure);
    return 0;
  }
  return static_cast<std::uint32_t>(count);
}

}  // namespace

void Handler::initialize(int period) {
  startRetryThread(period);
}

void Handler::deinitialize() {
  stopRetryThread();
}

bool Handler::setup(int camera, DetectionCallback callback, const std::set<std::string>& classes) {
  return setup(camera, std::move(callback), classes, std::nullopt);
}

bool Handler::setup(int camera, DetectionCallback callback, const std::set<std::string>& classes,
                    const std::optional<VodChannelConfiguration>& channelConfiguration) {
  DiscardedSubscriptions discarded;
  // uncovered: conditions of the compiler's own, about which members to destroy when a later one throws
  SubscriptionRequest request{camera, std::move(callback), {}, channelConfiguration};
  HandlerLock lock(handlerMutex);
  destroyPending(lock, camera);
  if (!lock.isOpen()) {
    return false;
  }
  request.classes = classes;
  return subscribeChannel(lock, request, discarded);
}

void Handler::teardown(int camera) {
  SubscriptionMap::node_type record = takeRecord(camera);
  // The lock is released before the platform is called, which may wait for a callback that waits for the lock: with the
  // record taken out, that callback finds its subscription gone and returns.
  if (record && record.mapped().userData) {
    endSubscription(record.mapped());
  }
}

bool Handler::isDlpuEnabled() {
  // may be uncovered: only at the end of the process, after the figures are written
  return !isClosed() && video_object_detection_subscriber_service_is_enabled();
}

std::uint32_t Handler::getNumberOfChannels() {
  return askForCount(video_object_detection_subscriber_get_nbr_channels,
                     "Unable to get number of channels from "
                     "video_object_detection_subscriber");
}

std::uint32_t Handler::getNumberOfSimultaneousChannels() {
  return askForCount(video_object_detection_subscriber_get_nbr_channels_simultaneously,
                     "Unable to get number of simultaneous channels from "
                     "video_object_detection_subscriber");
}

std::string Handler::getServiceVersion() {
  if (isClosed()) {  // may be uncovered: only at the end of the process, after the figures are written
    return {};       // may be uncovered: as above
  }
  OutParameterType<decltype(video_object_detection_subscriber_get_version), 0> major = 0;
  OutParameterType<decltype(video_object_detection_subscriber_get_version), 1> minor = 0;
  if (const int result = video_object_detection_subscriber_get_version(&major, &minor); result != 0) {
    syslog(LOG_ERR, "Failed to get the version of the vod lib: %d\n", result);
    return {};
  }
  return std::to_string(major).append(1, '.').append(std::to_string(minor));
}

DetectorInformation Handler::getDetectorInformation(int camera) {
  return DetectorInformation(readDetectorInformationForCamera(camera));
}

std::set<std::string> Handler::getSupportedClasses() {
  const HandlerLock lock(handlerMutex);
  return classificationsOf(readDetectorInformationForCamera(firstCamera)).getClassNames();
}

std::map<std::string, std::set<std::string>> Handler::getSupportedAttributes() {
  const HandlerLock lock(handlerMutex);
  // may be uncovered: only at the end of the process, after the figures are written
  return lock.isOpen() ? supportedAttributes(lock, firstCamera) : std::map<std::string, std::set<std::string>>();
}

DetectorInformation getDetectorInformation() {
  return Handler::getDetectorInformation(firstCamera);
}

}  // namespace tarn::VOD
