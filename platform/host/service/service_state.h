// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#ifndef VOD_HOST_SERVICE_SERVICE_STATE_H
#define VOD_HOST_SERVICE_SERVICE_STATE_H

#include "diagnostics.h"
#include "messages/scene_filter.h"
#include "replay/replayer.h"
#include "service/delivery_thread.h"
#include "service/subscriber.h"

#include <vod_host.h>

#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace vod::host {

using Handle = video_object_detection_subscriber_st*;

/** The receiver of a scene or a teardown. */
struct Target {
  std::shared_ptr<Subscriber> subscriber;
  int subscription;
};
/** Replaced, never modified: scenes that wait for their delivery share it. */
using Targets = std::shared_ptr<const std::vector<Target>>;

/** Calls the callbacks of all targets, on the caller's thread; the service's lock must not be held. */
void deliverTo(const Targets& targets, const Frame& frame, const std::optional<Region>& region);

/** A recording that feeds a channel, or the recordings of a session, which feed one channel each. */
struct Stream {
  /** Channels by the position of their recording; one that has another stream since is not fed. */
  std::vector<int> channels;
  std::vector<std::string> folders;
  Replay replay;
  std::shared_ptr<Replayer> replayer;
  /** The number of the replay whose scenes are delivered; 0 when there is none. */
  int replayNumber = 0;

  bool isSession() const { return folders.size() > 1; }
};

struct ChannelState {
  std::optional<std::string> information;
  std::optional<std::size_t> reportedInformationLength;
  bool nullInformation = false;

  /** Of its recording. */
  std::optional<std::string> folder;
  /** What plays that recording; null when there is none. */
  std::shared_ptr<Stream> stream;
  ChannelErrors errors;

  /** The channel's configuration. */
  std::optional<Region> region;
  Targets targets = std::make_shared<std::vector<Target>>();

  std::shared_ptr<DeliveryThread> thread;
};

/** Everything that `reset` returns to its initial state. */
struct ServiceState {
  std::map<int, ChannelState> channels;
  /** Those that feed no channel any more too: a replayer must not be destroyed under the service's lock. */
  std::vector<std::shared_ptr<Stream>> streams;
  /** Whether the channels have been chosen, by the control interface or by the environment. */
  bool isConfigured = false;
  /** What is wrong with the environment variables; every call that needs a channel fails then. */
  std::optional<std::string> configurationError;

  std::map<Handle, std::shared_ptr<Subscriber>> subscribers;
  /** Those created while calls were recorded, including deleted ones. */
  std::vector<std::shared_ptr<Subscriber>> known;
  int lastSubscriber = 0;
  int callsWithBadHandles = 0;

  bool isDown = false;
  bool isEnabled = true;
  int major = 1;
  int minor = 0;
  struct Counts {
    std::uint32_t channels, simultaneously;
  };
  std::optional<Counts> counts;

  bool waitsForCallbacks = true;
  std::chrono::milliseconds waitLimit = callbackWaitLimit;
  Threads threads = Threads::OnePerChannel;
  std::optional<std::string> sceneDuringSubscribe;
  bool teardownDuringDetection = false;

  /** The thread of all channels, and that of hostile teardowns. */
  std::shared_ptr<DeliveryThread> sharedThread;
  std::shared_ptr<DeliveryThread> teardownThread;
};

}  // namespace vod::host

#endif
