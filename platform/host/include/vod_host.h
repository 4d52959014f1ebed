// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

/**
 * @file
 * Control over the host platform, for tests and tools: what the service delivers, how it fails, and which calls it
 * received.
 *
 * The service is one per process, as on a device, so these are free functions and small handles by value. Everything
 * here is thread-safe and may be called from a callback, except where a function says otherwise. A function that waits
 * gives up after `waitTimeout` and throws `std::runtime_error`, whose text names the condition and holds the journal.
 * Tests never need to sleep.
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

/** The default time that `unsubscribe` and `delete` wait for a running callback before they give up. */
inline constexpr std::chrono::milliseconds callbackWaitLimit{2000};

/**
 * Returns the service to its initial state: no subscribers, faults or settings, and only the channels that the
 * environment names (it is read again at the next call that needs it). Subscribers are numbered from #1 again; the
 * journal is empty and recording. Existing subscribers are removed without a callback, and their handles are refused
 * afterwards. Opens every gate, then waits for running callbacks; must not be called from a callback.
 */
VOD_HOST_EXPORT void reset();

// ---- Channels ----

/** How a recording is played. */
struct Replay {
  /** A multiple of the recording's own pace; none means as fast as the callbacks return. */
  std::optional<double> pace = 1.0;
  /** Whether it starts again at its end. The bytes stay as recorded, so the time stamps start again too. */
  bool loop = true;
};

/**
 * A channel of the service, by number. Setters return the handle, so that they can be chained. All functions throw
 * `std::out_of_range` when the channel no longer exists, as after `reset`.
 */
class VOD_HOST_EXPORT Channel {
 public:
  /** Sets the bytes that `get_information` returns; they are not checked. */
  const Channel& detectorInformation(std::string bytes) const;
  /** Sets the length that `get_information` reports instead of the true one, to test lengths beyond every parser. */
  const Channel& reportedInformationLength(std::size_t length) const;
  /** Makes `get_information` succeed with a null pointer and length 0. */
  const Channel& nullInformation() const;
  /**
   * Feeds the channel from a recording folder. Its detector information is that of the folder, unless set above. It
   * plays while there are subscriptions, from its start at the first one.
   */
  const Channel& recording(std::string folder, Replay replay = {}) const;

  /**
   * Sends one scene to all current subscriptions; their callbacks run on the channel's thread, in order. Bytes that are
   * not a valid message are delivered unchanged to all of them, a scene without detections (or of zero bytes) only to
   * subscribers that receive empty hits.
   */
  const Channel& pushScene(std::string bytes) const;
  /** As above, but the callback receives this length, which may be zero, negative or too long. Never filtered. */
  const Channel& pushSceneOfLength(std::string bytes, std::int32_t length) const;
  /** A null buffer with the given length. Never filtered. */
  const Channel& pushNullScene(std::int32_t length = 0) const;
  /**
   * As `pushScene`, but on the caller's thread: the callbacks have returned when this does. Waits for a callback of the
   * same subscriber that is running on another thread.
   */
  const Channel& deliverScene(const std::string& bytes) const;

  /**
   * Ends all subscriptions of the channel, as a service does: scenes pushed before are delivered, later ones are not,
   * and then the teardown callbacks run. `drain` waits for them too.
   */
  const Channel& dropSubscriptions() const;

  /**
   * Waits until the recording, one that does not loop, has been delivered to its end or up to its damage; of a session,
   * until the recordings of all cameras have. Must not be called from a callback.
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
  friend VOD_HOST_EXPORT std::vector<Channel> session(const std::string&, Replay);
  explicit Channel(int number) : number_(number) {}
  int number_;
};

/**
 * Returns the channel with this number (from 0). If it does not exist, creates it without a recording and with empty
 * detector information. The first call after `reset` removes the channels that the environment names.
 */
VOD_HOST_EXPORT Channel channel(int number);

/**
 * Returns the channel with this number, which may be one that the environment names.
 *
 * @throw std::out_of_range  when it does not exist
 */
VOD_HOST_EXPORT Channel servedChannel(int number);

/**
 * Feeds channels from the recordings of a session: a folder with `camera-1`, `camera-2` and so on, as `tarnvod record`
 * makes it of several cameras. The first camera feeds channel 0, the next one channel 1; channels are created as
 * `channel` does.
 *
 * The cameras are played in step, by one clock: each scene is delivered at the time at which it arrived, or follows the
 * one before it as its time stamp says where that is not known. The session plays while any of its channels has
 * subscriptions, from its start at the first one; a channel that is subscribed later joins where the session is. In a
 * loop, all cameras start again together after the last scene of all.
 *
 * Without a pace, scenes are delivered one after the other in the order of their arrival; each callback returns before
 * that of the next scene begins, whichever camera's it is. With one, the callbacks of a channel hold up those of others
 * only when they are 64 scenes behind.
 *
 * @return the channels, by camera
 * @throw std::runtime_error  when the folder is not a session, or when a channel has subscriptions and its recording
 *                            cannot be played
 */
VOD_HOST_EXPORT std::vector<Channel> session(const std::string& folder, Replay replay = {});

/**
 * Returns what is wrong with an environment variable, on one line: its name, its value and the values allowed. None when
 * all are valid, or when channels made with `channel` replace those that they name. With an error, every call that needs
 * a channel fails until `reset`, however often an application retries; a program may stop instead.
 */
VOD_HOST_EXPORT std::optional<std::string> configurationError();

/**
 * Waits until the callbacks of all scenes and teardowns that were caused before the call have returned. Must not be
 * called from a callback.
 */
VOD_HOST_EXPORT void drain();

// ---- The service ----

/**
 * Takes the service down: drops the subscriptions of all channels, and until it is up again `create`, `subscribe`,
 * `set_channel_configuration`, `get_information` and both counts fail. The functions that need no service keep working:
 * `delete`, `unsubscribe`, the setters of a subscriber, `get_version` and `service_is_enabled`.
 */
VOD_HOST_EXPORT void takeServiceDown();
VOD_HOST_EXPORT void bringServiceUp();

/** Sets what `get_version` returns; 1.0 after `reset`. */
VOD_HOST_EXPORT void setVersion(int major, int minor);
/** Sets what the two counts return; after `reset` the number of channels. */
VOD_HOST_EXPORT void setChannelCounts(std::uint32_t channels, std::uint32_t simultaneously);
/** Sets what `service_is_enabled` returns; true after `reset`. */
VOD_HOST_EXPORT void setEnabled(bool enabled);

// ---- Behaviour in which closed libraries differ, and hostile behaviour ----

/**
 * Sets whether `unsubscribe` and `delete` wait for a callback that is running on another thread, and for how long. They
 * do after `reset`.
 */
VOD_HOST_EXPORT void waitForCallbacks(bool wait, std::chrono::milliseconds limit = callbackWaitLimit);

enum class Threads { OnePerChannel, OneForAll };
/** Sets on which threads callbacks run; one per channel after `reset`. Must be called before any subscription. */
VOD_HOST_EXPORT void callbackThreads(Threads threads);

/** From now on `subscribe` passes this scene to the detection callback on the caller's thread, before it returns. */
VOD_HOST_EXPORT void deliverDuringSubscribe(std::string scene);

/** From now on teardown callbacks run at once, on a thread of their own, even while a detection callback is running. */
VOD_HOST_EXPORT void teardownDuringDetection(bool enabled);

/**
 * From now on exceptions that leave a callback are caught and counted. Otherwise they end the process, as they would in
 * a platform written in C.
 */
VOD_HOST_EXPORT void catchCallbackExceptions(bool enabled);
/** The number of exceptions caught since `reset`. */
VOD_HOST_EXPORT int caughtCallbackExceptions();

/**
 * Sets functions that run before and after every call of the C interface, on the calling thread; null for none. A test
 * that makes allocations fail uses them to exclude those of the platform itself. They must not throw.
 */
VOD_HOST_EXPORT void aroundCalls(void (*entering)(), void (*leaving)());

// ---- Subscribers ----

/** The number of existing subscribers, subscribed or not: 0 at the end of a test that leaks none. */
VOD_HOST_EXPORT int liveSubscribers();
/** The number of calls with an invalid handle since `reset`. */
VOD_HOST_EXPORT int callsWithBadHandles();

/**
 * What a subscriber registered. Kept after the subscriber has been deleted, until `reset`, if it was created while
 * calls were recorded.
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
 * Returns what the subscriber with this number registered. A test that calls its functions directly bypasses every
 * guarantee of the platform, for example to deliver to a deleted subscriber, as a library that does not wait may do.
 *
 * @throw std::out_of_range  when there is no such subscriber
 */
VOD_HOST_EXPORT Registration registration(int subscriber);

}  // namespace vod::host

#endif
