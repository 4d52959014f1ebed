// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

// The path of one frame, from the service's bytes to the application's callback.

#include "detection-data/scene_conversion.h"
#include "handler/handler_state.h"
#include "handler/platform_callbacks.h"

#include <syslog.h>
#include <tarnvod/handler.h>
#include <tarnvod/video_object_detection.pb.h>

namespace tarn::VOD {
namespace {

/** Who gets a camera's frames, and the names for them. */
struct Receiver {
  int camera = 0;
  DetectionCallback callback;
  SceneNames names;
};

std::shared_ptr<const AttributeNames> attributeNamesOf(int camera) TARNVOD_REQUIRES(handlerMutex) {
  const auto entry = registry->attributes.find(camera);
  return entry != registry->attributes.end() ? entry->second.names : nullptr;
}

Receiver copyReceiver(const void* userData) {
  const HandlerLock lock(handlerMutex);
  if (!lock.isOpen()) {
    return {};
  }
  const auto active = registry->findActive(userData);
  if (active == registry->active.end()) {
    return {};
  }
  const auto& [camera, subscription] = *active;
  return {camera, subscription.request.callback, {subscription.classNames, attributeNamesOf(camera)}};
  // uncovered: conditions of the compiler's own, about which members to destroy when a later one throws
}

void parse(::VOD::Scene& scene, const std::uint8_t* buffer, std::int32_t length) {
  if (length >= 0) {
    // Bytes that don't parse are no reason to withhold the frame: what could be read of them is delivered.
    static_cast<void>(scene.ParseFromArray(buffer, length));
  }
}

void logMissingAttributeType(std::uint32_t type) {
  syslog(LOG_ERR, "Missing vod attribute string for attribute type id %d\n", static_cast<int>(type));
}

}  // namespace

void onServiceDetection(const std::uint8_t* buffer, std::int32_t length, void* userData) {
  if (userData == nullptr || buffer == nullptr) {
    return;
  }
  // From here on handlerMutex is free again: the callback may call the handler, and other cameras' frames go on.
  const Receiver receiver = copyReceiver(userData);
  if (!receiver.callback) {
    return;
  }
  ::VOD::Scene scene;
  parse(scene, buffer, length);
  receiver.callback(convertScene(scene, receiver.names, logMissingAttributeType), receiver.camera);
}

}  // namespace tarn::VOD
