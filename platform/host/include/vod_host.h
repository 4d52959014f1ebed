// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

/**
 * @file
 * Control over the host platform, for tests and tools: what the service serves, how it misbehaves, and what it was
 * asked.
 *
 * The service is one per process, as on a device, so these are free functions and small handles by value. Everything
 * here is thread-safe and may be called from a callback, except where a function says otherwise. A function that waits
 * gives up after `waitTimeout` and throws `std::runtime_error` with what it waited for and the journal; no test needs
 * to sleep.
 *
 * @code
 * vod::host::reset();
 * vod::host::channel(0).detectorInformation(bytes);
 * vod::host::plan(vod::host::Fault(vod::host::Function::Subscribe).onCall(1).failsWith(5));
 * ... the code under test ...
 * vod::host::channel(0).pushScene(scene);
 * vod::host::drain();
 * EXPECT_THAT(vod::host::journal(), ElementsAre("create(channel=0)", ..., "subscribe(#2)"));
 * @endcode
 */

#ifndef VOD_HOST_H
#define VOD_HOST_H

#include <video_object_detection_subscriber.h>
#include <vod_host_calls.h>

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace vod::host {

/** How long `unsubscribe` and `delete` wait for a running callback before they give up, by default. */
inline constexpr std::chrono::milliseconds callbackWaitLimit{2000};

/**
 * Returns the service to its beginning: no channel but what the environment names (read again, at the next call that
 * needs it), no subscriber, fault, switch or setting; numbers start at #1; the journal is empty and records.
 * Subscribers that were still there are gone without a callback, and their handles are refused from now on. Opens every
 * gate, then waits for callbacks that run; must not be called from a callback.
 */
VOD_HOST_EXPORT void reset();

// ---- Channels ----

/** How a recording is played. */
struct Replay {
  /** Multiple of the recording's own pace; none is as fast as the callbacks return. */
  std::optional<double> pace = 1.0;
  /** Whether it starts again at its end. The bytes stay as recorded, so the time stamps start again too. */
  bool loop = true;
};

/**
 * A channel of the service, by number. Setters return the handle, so that they can be chained. All functions throw
 * `std::out_of_range` when the channel has gone, which is what `reset` does to it.
 */
class VOD_HOST_EXPORT Channel {
 public:
  /** What `get_information` answers: the bytes, as they are. */
  const Channel& detectorInformation(std::string bytes) const;
  /** What `get_information` gives as the length, instead of the true one; for lengths beyond every parser. */
  const Channel& reportedInformationLength(std::size_t length) const;
  /** Makes `get_information` succeed with a null pointer and length 0. */
  const Channel& nullInformation() const;
  /**
   * Feeds the channel from a recording folder. Its detector information is that of the folder, unless set above. It
   * plays while there are subscriptions, from its start at the first one.
   */
  const Channel& recording(std::string folder, Replay replay = {}) const;

  /**
   * Sends one scene to all who are subscribed now; their callbacks run on the channel's thread, in order. The bytes may
   * be anything. Bytes that are no message go to everyone, as they are; an empty scene (zero bytes included) only to
   * those who receive empty hits.
   */
  const Channel& pushScene(std::string bytes) const;
  /** As above, but the callback is given this length, which may be zero, negative or too long. Never filtered. */
  const Channel& pushSceneOfLength(std::string bytes, std::int32_t length) const;
  /** A null buffer with the given length. Never filtered. */
  const Channel& pushNullScene(std::int32_t length = 0) const;
  /**
   * As `pushScene`, but on the caller's thread: the callbacks have returned when this does. Waits for a callback of the
   * same subscriber that runs elsewhere.
   */
  const Channel& deliverScene(const std::string& bytes) const;

  /**
   * Ends all subscriptions of the channel, as a service does: no scene pushed from now on arrives, those pushed before
   * do, then the teardown callback runs. Where `drain` waits for scenes, it waits for this as well.
   */
  const Channel& dropSubscriptions() const;

  /**
   * Waits until the recording, one that does not loop, has been delivered to its end or up to its damage. Must not be
   * called from a callback.
   */
  void waitForEndOfRecording() const;
  /**
   * Whether the recording, one that does not loop, has been delivered to its end or up to its damage. Its subscriptions
   * are not dropped, but receive no further frame; the recording starts again with the first subscription after all of
   * them have ended.
   */
  bool isAtEndOfRecording() const;

  /** Numbers of the subscribers that are subscribed to this channel, in the order of creation. */
  std::vector<int> subscriptions() const;
  int number() const { return number_; }

 private:
  friend VOD_HOST_EXPORT Channel channel(int);
  friend VOD_HOST_EXPORT Channel servedChannel(int);
  explicit Channel(int number) : number_(number) {}
  int number_;
};

/**
 * The channel of a number (from 0), made if there is none: fed by what is pushed, with empty detector information. The
 * first call after `reset` takes away the channels that the environment names.
 */
VOD_HOST_EXPORT Channel channel(int number);

/**
 * The channel of a number as it is served, also from a recording that the environment names.
 *
 * @throw std::out_of_range  when there is none
 */
VOD_HOST_EXPORT Channel servedChannel(int number);

/**
 * What is wrong with an environment variable, on one line: its name, its value and the values allowed. None when all
 * are valid or when `channel` has taken the place of what they name. Calls that need a channel fail until `reset`, so
 * an application that retries does so forever; a program may ask this to stop instead.
 */
VOD_HOST_EXPORT std::optional<std::string> configurationError();

/**
 * Waits until all scenes and teardowns, pushed or dropped before the call, have been through their callbacks. Must not
 * be called from a callback.
 */
VOD_HOST_EXPORT void drain();

// ---- The service ----

/**
 * Takes the service down: drops the subscriptions of all channels, and until it is up again `create`, `subscribe`,
 * `set_channel_configuration`, `get_information` and both counts fail. What needs no service keeps working: `delete`,
 * `unsubscribe`, the setters of a subscriber, `get_version` and `service_is_enabled`.
 */
VOD_HOST_EXPORT void takeServiceDown();
VOD_HOST_EXPORT void bringServiceUp();

/** What `get_version` answers; 1.0 after reset. */
VOD_HOST_EXPORT void setVersion(int major, int minor);
/** What the two counts answer; after reset the number of channels there are. */
VOD_HOST_EXPORT void setChannelCounts(std::uint32_t channels, std::uint32_t simultaneously);
/** What `service_is_enabled` answers; true after reset. */
VOD_HOST_EXPORT void setEnabled(bool enabled);

// ---- Behaviour in which closed libraries differ, and hostile behaviour ----

/** Whether `unsubscribe` and `delete` wait for a callback that runs on another thread, and how long; they do after
 * reset. */
VOD_HOST_EXPORT void waitForCallbacks(bool wait, std::chrono::milliseconds limit = callbackWaitLimit);

enum class Threads { OnePerChannel, OneForAll };
/** On which threads callbacks run; one per channel after reset. To be called before there are subscriptions. */
VOD_HOST_EXPORT void callbackThreads(Threads threads);

/** From now on `subscribe` hands this scene to the detection callback on the caller's thread, before it returns. */
VOD_HOST_EXPORT void deliverDuringSubscribe(std::string scene);

/** From now on teardown callbacks run at once, on a thread of their own, also while a detection callback runs. */
VOD_HOST_EXPORT void teardownBesideDetection(bool enabled);

/**
 * From now on an exception that leaves a callback is counted and goes no further. Otherwise it ends the process, as it
 * would in a platform written in C.
 */
VOD_HOST_EXPORT void catchCallbackExceptions(bool enabled);
/** How many were caught since reset. */
VOD_HOST_EXPORT int caughtCallbackExceptions();

/**
 * Runs functions around every call of the C interface, on the calling thread; null for none. With them a test that
 * makes allocations fail can leave out the platform's own, which on a device are out of anybody's reach. They must not
 * throw.
 */
VOD_HOST_EXPORT void aroundCalls(void (*entering)(), void (*leaving)());

// ---- Subscribers ----

/** How many subscribers exist, subscribed or not: 0 at the end of a test that leaks none. */
VOD_HOST_EXPORT int liveSubscribers();
/** How many calls were made with a handle that is not a live one, since reset. */
VOD_HOST_EXPORT int callsWithBadHandles();

/**
 * What a subscriber registered. Stays known after the subscriber has been deleted, until `reset`, if it was created
 * while calls were recorded.
 */
struct Registration {
  int subscriber = 0;
  int channel = 0;
  void* userData = nullptr;
  video_object_detection_subscriber_detection_callback detection = nullptr;
  video_object_detection_subscriber_teardown_callback teardown = nullptr;
  bool deleted = false;
};

/**
 * What the subscriber of a number registered. Calling its functions from a test bypasses every promise of the platform:
 * that is how to deliver to a deleted subscriber, as a library that does not wait may do.
 *
 * @throw std::out_of_range  when no such subscriber is known
 */
VOD_HOST_EXPORT Registration registration(int subscriber);

}  // namespace vod::host

#endif
