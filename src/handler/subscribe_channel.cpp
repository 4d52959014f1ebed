// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "handler/subscribe_channel.h"

#include "detector-information/class_ids_to_names.h"
#include "handler/attribute_names.h"
#include "handler/failure_count.h"
#include "handler/platform_callbacks.h"
#include "support/platform_types.h"

#include <syslog.h>
#include <tarnvod/read_detector_information.h>

#include <limits>
#include <memory>
#include <stdexcept>
#include <system_error>
#include <utility>

namespace tarn::VOD {
namespace {

/** Raises a failed platform call; what is raised here fails the set-up and is logged. */
void require(bool success, const char* failure) {
  if (!success) {
    throw std::runtime_error(failure);
  }
}

/** The platform's own prototypes, whatever integer types its header has. */
template <typename Byte, typename Length, typename UserData>
void detectionCallback(Byte* buffer, Length length, UserData* userData) {
  constexpr auto unparsable = std::int32_t{-1};
  const bool fits = static_cast<std::uint64_t>(length) <= std::numeric_limits<std::int32_t>::max();
  onServiceDetection(reinterpret_cast<const std::uint8_t*>(buffer),
                     fits ? static_cast<std::int32_t>(length) : unparsable, userData);
}

/**
 * The record is made inside a map's node, so that moving it into a registry map later cannot fail. The callable is
 * moved in last: whatever fails before, it stays the caller's.
 */
SubscriptionMap::node_type makeSubscription(int camera, DetectionCallback& callback,
                                            const std::optional<VodChannelConfiguration>& channelConfiguration)
    TARNVOD_REQUIRES(handlerMutex) {
  std::int32_t& number = cameraNumbers.try_emplace(camera, camera).first->second;
  SubscriptionMap single;
  std::unique_ptr<ChannelSubscription>& record = single[camera];
  record.reset(new ChannelSubscription{nullptr, number, nullptr, {}, nullptr, channelConfiguration, nullptr});
  record->callback = std::move(callback);
  return single.extract(camera);
}

std::shared_ptr<const ClassNames> makeClassNames(const Classifications& supported,
                                                 const std::set<std::string>& classes) {
  return std::make_shared<const ClassNames>(mapClassIdsToNames(supported, classes));
}

/** Swaps, so that what was there goes with the record that is discarded. */
void update(ChannelSubscription& live, ChannelSubscription& wanted) noexcept {
  live.callback.swap(wanted.callback);
  live.classes.swap(wanted.classes);
  live.classIdsToNames.swap(wanted.classIdsToNames);
}

using Create = decltype(video_object_detection_subscriber_create);
using SetChannelConfiguration = decltype(video_object_detection_set_channel_configuration);

void configureRegion(const ChannelSubscription& subscription) {
  ::VOD::ChannelConfiguration configuration;
  ::VOD::BoundingBox& roi = *configuration.mutable_roi();
  roi.set_coord_1(subscription.channelConfiguration->coord1);
  roi.set_coord_2(subscription.channelConfiguration->coord2);
  roi.set_coord_3(subscription.channelConfiguration->coord3);
  roi.set_coord_4(subscription.channelConfiguration->coord4);
  const std::string bytes = configuration.SerializeAsString();
  require(video_object_detection_set_channel_configuration(
              static_cast<ParameterType<SetChannelConfiguration, 0>>(subscription.camera - 1),
              reinterpret_cast<ParameterType<SetChannelConfiguration, 1>>(bytes.data()),
              static_cast<ParameterType<SetChannelConfiguration, 2>>(bytes.size()), nullptr) == 0,
          "Failed to set channel configuration on vod.");
  require(video_object_detection_subscriber_use_channel_configuration(subscription.subscriber, true) == 0,
          "Failed to enable channel configuration on vod.");
}

void subscribe(ChannelSubscription& subscription) {
  require(video_object_detection_subscriber_create(&subscription.subscriber, &subscription.camera,
                                                   static_cast<ParameterType<Create, 2>>(subscription.camera - 1)) == 0,
          "Failed to create subscription to vod.");
  require(video_object_detection_subscriber_set_get_detection_callback(subscription.subscriber, detectionCallback) == 0,
          "Failed to set callback for reading data on vod");
  require(video_object_detection_subscriber_set_teardown_callback(subscription.subscriber, onServiceTeardown) == 0,
          "Failed to set callback for teardown on vod");
  require(video_object_detection_subscriber_set_receive_empty_hits(subscription.subscriber, true) == 0,
          "Failed to set property 'recieve_empty' on vod.");
  if (subscription.channelConfiguration) {
    configureRegion(subscription);
  }
  require(video_object_detection_subscriber_subscribe(subscription.subscriber) == 0,
          "Failed to subscribe to vod data.");
}

/** Gives back what a failed attempt got from the platform; there is nothing to be done about failures here. */
void releaseSubscriber(ChannelSubscription& subscription) noexcept {
  if (subscription.subscriber != nullptr) {
    static_cast<void>(video_object_detection_subscriber_unsubscribe(subscription.subscriber));
    static_cast<void>(video_object_detection_subscriber_delete(&subscription.subscriber));
    subscription.subscriber = nullptr;
  }
}

void logFailure(const char* failure) TARNVOD_REQUIRES(handlerMutex) {
  if (setupFailureCount == 0) {
    syslog(LOG_INFO, "%s\n", failure);
  } else if (setupFailureCount % failuresBetweenWarnings == 0) {
    syslog(LOG_WARNING, "%s\n", failure);
  }
  setupFailureCount = countAfterFailure(setupFailureCount);
}

}  // namespace

bool subscribeChannel(const HandlerLock& lock, DiscardedSubscriptions& discarded, int camera,
                      DetectionCallback& callback, const std::set<std::string>& classes,
                      const std::optional<VodChannelConfiguration>& channelConfiguration) {
  SubscriptionMap::node_type record = makeSubscription(camera, callback, channelConfiguration);
  ChannelSubscription& subscription = *record.mapped();
  const auto abandon = [&]() noexcept {
    releaseSubscriber(subscription);
    discarded.add(std::move(record.mapped()));
  };
  try {
    const Classifications supported = Handler::getDetectorInformation(camera).getClassifications();
    require(supported.areAllClassesSupported(classes), "Not all requested classes are supported");
    subscription.classes = classes;
    subscription.classIdsToNames = makeClassNames(supported, classes);
    if (const auto active = activeSubscriptions.find(camera); active != activeSubscriptions.end()) {
      update(*active->second, subscription);
      abandon();
      return true;
    }
    subscribe(subscription);
    // The service is asked for the detector through the new subscriber too; what it answers is of no further use.
    static_cast<void>(readDetectorInformation(subscription.subscriber));
    refreshAttributeNames(lock, camera);
  } catch (const std::system_error&) {
    // A runtime error by its type, yet not a failure of the set-up.
    abandon();
    throw;
  } catch (const std::runtime_error& failure) {
    releaseSubscriber(subscription);
    store(pendingSubscriptions, std::move(record), discarded);
    logFailure(failure.what());
    return false;
  } catch (...) {
    abandon();
    throw;
  }
  store(activeSubscriptions, std::move(record), discarded);
  setupFailureCount = 0;
  return true;
}

}  // namespace tarn::VOD
