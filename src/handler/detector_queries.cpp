// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

// What a camera's detector can do, asked from the service.

#include "handler/detector_queries.h"

#include "handler/attribute_names.h"
#include "handler/handler_state.h"
#include "support/platform_types.h"

#include <tarnvod/handler.h>
#include <tarnvod/read_detector_information.h>

#include <map>
#include <set>
#include <stdexcept>
#include <string>
#include <utility>

namespace tarn::VOD {
namespace {

/** A subscriber that only asks: it is never subscribed and has no callbacks, and so needs no user data. */
class TemporarySubscriber {
 public:
  explicit TemporarySubscriber(int camera) {
    if (video_object_detection_subscriber_create(
            &subscriber_, nullptr,
            static_cast<ParameterType<decltype(video_object_detection_subscriber_create), 2>>(camera - 1)) != 0) {
      throw std::runtime_error("Failed to create subscription to vod.");
    }
  }
  // There is nothing to be done about a failure to delete it.
  ~TemporarySubscriber() { static_cast<void>(video_object_detection_subscriber_delete(&subscriber_)); }

  TemporarySubscriber(const TemporarySubscriber&) = delete;
  TemporarySubscriber& operator=(const TemporarySubscriber&) = delete;

  video_object_detection_subscriber_st* get() const { return subscriber_; }

 private:
  video_object_detection_subscriber_st* subscriber_ = nullptr;
};

/** The names of all values of one attribute type. */
std::set<std::string> valueNames(const AttributeClassNames& names, std::uint32_t type) {
  std::set<std::string> values;
  for (std::size_t i = 0; i < names.size(); ++i) {
    if (names.id(i).type == type) {
      values.insert(names.name(i));
    }
  }
  return values;
}

template <typename Table>
const Table& tableOf(const std::map<int, std::shared_ptr<const Table>>& tables, int camera, const Table& empty) {
  const auto entry = tables.find(camera);
  return entry != tables.end() && entry->second ? *entry->second : empty;
}

}  // namespace

::VOD::DetectorInformation readDetectorInformationForCamera(int camera) {
  const HandlerLock lock(handlerMutex);
  if (const auto active = activeSubscriptions.find(camera); active != activeSubscriptions.end()) {
    return readDetectorInformation(active->second->subscriber);
  }
  return readDetectorInformation(TemporarySubscriber(camera).get());
}

DetectorInformation Handler::getDetectorInformation(int camera) {
  return DetectorInformation(readDetectorInformationForCamera(camera));
}

DetectorInformation getDetectorInformation() {
  return Handler::getDetectorInformation(1);
}

std::set<std::string> Handler::getSupportedClasses() {
  const HandlerLock lock(handlerMutex);
  return getDetectorInformation(1).getClassifications().getClassNames();
}

std::map<std::string, std::set<std::string>> Handler::getSupportedAttributes() {
  constexpr int camera = 1;
  const HandlerLock lock(handlerMutex);
  // A detector without attributes leaves no entry, and so is asked again each time.
  if (attributeTypeNames.count(camera) == 0 || attributeClassNames.count(camera) == 0) {
    refreshAttributeNames(lock, camera);
  }
  const AttributeTypeNames noTypes;
  const AttributeClassNames noValues;
  const AttributeTypeNames& types = tableOf(attributeTypeNames, camera, noTypes);
  const AttributeClassNames& values = tableOf(attributeClassNames, camera, noValues);
  std::map<std::string, std::set<std::string>> attributes;
  for (std::size_t i = 0; i < types.size(); ++i) {
    attributes[types.name(i)] = valueNames(values, types.id(i));
  }
  return attributes;
}

}  // namespace tarn::VOD
