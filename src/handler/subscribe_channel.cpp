// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "handler/subscribe_channel.h"

#include "detector-information/class_ids_to_names.h"
#include "detector-information/detector_conversion.h"
#include "handler/attribute_names.h"
#include "handler/camera_detector.h"
#include "handler/platform_callbacks.h"
#include "support/platform_types.h"

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

using Create = decltype(video_object_detection_subscriber_create);
using SetChannelConfiguration = decltype(video_object_detection_set_channel_configuration);

/** A camera's new subscriber at the platform. Unless it is kept, it is unsubscribed and deleted. */
class NewSubscriber {
 public:
  explicit NewSubscriber(int camera) TARNVOD_REQUIRES(handlerMutex)
      : userData_(registry->userData->make(camera)), setUp_{userData_.get(), false, registry->innermostSetUp} {
    registry->innermostSetUp = &setUp_;
  }

  // There is nothing to be done about failures here.
  ~NewSubscriber() TARNVOD_REQUIRES(handlerMutex) {
    if (subscriber_ != nullptr) {
      static_cast<void>(video_object_detection_subscriber_unsubscribe(subscriber_));
      static_cast<void>(video_object_detection_subscriber_delete(&subscriber_));
    }
    registry->innermostSetUp = setUp_.outer;
  }

  NewSubscriber(const NewSubscriber&) = delete;
  NewSubscriber& operator=(const NewSubscriber&) = delete;

  void subscribe(const std::optional<VodChannelConfiguration>& region) {
    require(video_object_detection_subscriber_create(&subscriber_, userData_.get(),
                                                     static_cast<ParameterType<Create, 2>>(channel())) == 0,
            "Failed to create subscription to vod.");
    require(video_object_detection_subscriber_set_get_detection_callback(subscriber_, detectionCallback) == 0,
            "Failed to set callback for reading data on vod");
    require(video_object_detection_subscriber_set_teardown_callback(subscriber_, onServiceTeardown) == 0,
            "Failed to set callback for teardown on vod");
    require(video_object_detection_subscriber_set_receive_empty_hits(subscriber_, true) == 0,
            "Failed to set property 'recieve_empty' on vod.");
    if (region) {
      configure(*region);
    }
    require(video_object_detection_subscriber_subscribe(subscriber_) == 0 && !setUp_.dropped, subscribingFailed);
  }

  /** The service may have ended the subscription while the platform was asked through other subscribers. */
  void requireThatItLasts() const { require(!setUp_.dropped, subscribingFailed); }

  video_object_detection_subscriber_st* get() const { return subscriber_; }

  void keepIn(ChannelSubscription& record) noexcept {
    record.subscriber = std::exchange(subscriber_, nullptr);
    record.userData = std::move(userData_);
  }

 private:
  static constexpr auto subscribingFailed = "Failed to subscribe to vod data.";

  int channel() const { return channelOf(userData_->camera); }

  void configure(const VodChannelConfiguration& region) const {
    // A message that makes a member of its oneof and finds no memory has one that is not there, and destroys it.
    auto roi = std::make_unique<::VOD::BoundingBox>();
    roi->set_coord_1(region.coord1);
    roi->set_coord_2(region.coord2);
    roi->set_coord_3(region.coord3);
    roi->set_coord_4(region.coord4);
    ::VOD::ChannelConfiguration configuration;
    configuration.set_allocated_roi(roi.release());
    const std::string bytes = configuration.SerializeAsString();
    require(video_object_detection_set_channel_configuration(
                static_cast<ParameterType<SetChannelConfiguration, 0>>(channel()),
                reinterpret_cast<ParameterType<SetChannelConfiguration, 1>>(bytes.data()),
                static_cast<ParameterType<SetChannelConfiguration, 2>>(bytes.size()), nullptr) == 0,
            "Failed to set channel configuration on vod.");
    require(video_object_detection_subscriber_use_channel_configuration(subscriber_, true) == 0,
            "Failed to enable channel configuration on vod.");
  }

  UserDataPool::Pointer userData_;
  SetUpUnderWay setUp_;
  video_object_detection_subscriber_st* subscriber_ = nullptr;
};

/** An empty record inside a map's node, so that moving it into the registry later cannot fail. */
SubscriptionMap::node_type makeRecord(int camera) {
  SubscriptionMap single;
  single[camera];
  return single.extract(camera);
}

/** Swaps, so that the caller destroys what was there. */
void update(ChannelSubscription& live, SubscriptionRequest& request,
            std::shared_ptr<const ClassNames>& classNames) noexcept {
  live.request.callback.swap(request.callback);
  live.request.classes.swap(request.classes);
  live.classNames.swap(classNames);
}

}  // namespace

bool subscribeChannel(const HandlerLock& lock, SubscriptionRequest& request, DiscardedSubscriptions& discarded) {
  SubscriptionMap::node_type record = makeRecord(request.camera);
  ChannelSubscription& subscription = record.mapped();
  bool classesAreSupported = false;
  try {
    const Classifications supported = classificationsOf(readDetectorInformationForCamera(request.camera));
    classesAreSupported = supported.areAllClassesSupported(request.classes);
    require(classesAreSupported, "Not all requested classes are supported");
    subscription.classNames = std::make_shared<const ClassNames>(mapClassIdsToNames(supported, request.classes));
    if (const auto active = registry->active.find(request.camera); active != registry->active.end()) {
      update(active->second, request, subscription.classNames);
      return true;
    }
    NewSubscriber subscriber(request.camera);
    subscriber.subscribe(request.channelConfiguration);
    // The service is asked for the detector through the new subscriber too; its answer is of no further use.
    static_cast<void>(readDetectorInformation(subscriber.get()));
    refreshAttributeNames(lock, request.camera);
    subscriber.requireThatItLasts();
    subscriber.keepIn(subscription);
  } catch (const std::system_error&) {
    throw;  // a runtime error by its type, yet not a failure of the set-up
  } catch (const std::runtime_error& failure) {
    if (!classesAreSupported) {
      request.classes.clear();
    }
    subscription.request = std::move(request);
    store(registry->pending, std::move(record), discarded);
    registry->failureLog.add(failure.what());
    return false;
  }
  subscription.request = std::move(request);
  store(registry->active, std::move(record), discarded);
  registry->failureLog.endRun();
  return true;
}

}  // namespace tarn::VOD
