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

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <iosfwd>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <video_object_detection_subscriber.h>

/** Marks what the host platform exports beside the C interface. */
#define VOD_HOST_EXPORT __attribute__((visibility("default")))

namespace vod::host {

/** How long a function of this header waits before it throws. */
inline constexpr std::chrono::seconds waitTimeout{30};

/** How long `unsubscribe` and `delete` wait for a running callback before they give up, unless told otherwise. */
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

/** A channel of the service, by number. Setters return the handle, so that they can be chained. */
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
  /** As above, but the callback is told this length, which may be zero, negative or too long. Never filtered. */
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

  /** Waits until the recording, one that does not loop, has been delivered to its end or up to its damage. */
  void waitForEndOfRecording() const;

  /** Numbers of the subscribers that are subscribed to this channel, in the order of creation. */
  std::vector<int> subscriptions() const;
  int number() const { return number_; }

 private:
  friend VOD_HOST_EXPORT Channel channel(int);
  explicit Channel(int number) : number_(number) {}
  int number_;
};

/**
 * The channel of a number (from 0), made if there is none: fed by what is pushed, with empty detector information. The
 * first call after `reset` takes away the channels that the environment names.
 */
VOD_HOST_EXPORT Channel channel(int number);

/** Waits until all scenes and teardowns, pushed or dropped before the call, have been through their callbacks. */
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

/** From now on teardown callbacks run at once, on a thread of their own, also beside a detection callback that runs. */
VOD_HOST_EXPORT void teardownBesideDetection(bool enabled);

/**
 * From now on an exception that leaves a callback is counted and goes no further. Otherwise it ends the process, as it
 * would in a platform written in C.
 */
VOD_HOST_EXPORT void catchCallbackExceptions(bool enabled);
/** How many were caught since reset. */
VOD_HOST_EXPORT int caughtCallbackExceptions();

// ---- The C functions, by name ----

/** One for each function of the C interface. */
enum class Function {
  Create,
  Delete,
  Subscribe,
  Unsubscribe,
  SetGetDetectionCallback,
  SetTeardownCallback,
  SetReceiveEmptyHits,
  UseChannelConfiguration,
  SetChannelConfiguration,
  GetInformation,
  GetNbrChannels,
  GetNbrChannelsSimultaneously,
  GetVersion,
  ServiceIsEnabled,
};
inline constexpr std::size_t functionCount = 14;

/** The C name without its prefix: `set_receive_empty_hits`. */
VOD_HOST_EXPORT const char* name(Function function);
VOD_HOST_EXPORT std::ostream& operator<<(std::ostream& out, Function function);

// ---- Faults ----

/** A known place at which a call waits until the test lets it go on. Copies are the same gate. Opened also by `reset`.
 */
class VOD_HOST_EXPORT Gate {
 public:
  Gate();
  /** Waits until a call stands at the gate, or has stood there. */
  void waitUntilReached() const;
  /** Lets the calls at the gate go on, and all that come later. */
  void open() const;
  /** Stands at the gate until it is open. Faults do this; a test's own callback may do so too. */
  void pass() const;

 private:
  struct State;
  std::shared_ptr<State> state_;
};

/**
 * What happens to which calls of a function. Calls are counted from 1, beginning when the fault is planned; without a
 * choice it is the first. All that is set happens, in this order and before the call does its work: run, gate, delay,
 * service up, failure.
 */
class VOD_HOST_EXPORT Fault {
 public:
  explicit Fault(Function function);

  Fault& onCall(int call);
  /** This call and all after it, until the fault is lifted. */
  Fault& fromCall(int call);
  /** All calls until the fault is lifted. */
  Fault& always() { return fromCall(1); }

  /**
   * The call returns this code and does nothing, except that `delete` still releases the subscriber. A code of 0 lets
   * the call succeed without doing anything. `service_is_enabled` returns whether the code is not 0.
   */
  Fault& failsWith(int code);
  Fault& isDelayedBy(std::chrono::milliseconds delay);
  /** Runs on the calling thread, with no lock of the platform held. */
  Fault& runs(std::function<void()> action);
  Fault& waitsAt(Gate gate);
  /** The service comes back while the call runs; with a failure: too late for this one. */
  Fault& bringsServiceUp();

 private:
  friend class FaultPlan;
  Function function_;
  int first_ = 1;
  int last_ = 1;
  std::optional<int> code_;
  std::chrono::milliseconds delay_{0};
  std::function<void()> action_;
  std::optional<Gate> gate_;
  bool bringsServiceUp_ = false;
};

/** Adds a fault to the plan; the number is for `lift`. Of several that meet one call all happen, and the first code
 * counts. */
VOD_HOST_EXPORT int plan(const Fault& fault);
/** Takes a fault out of the plan. Calls that already stand at its gate stay there until the gate opens. */
VOD_HOST_EXPORT void lift(int fault);
VOD_HOST_EXPORT void liftAllFaults();

// ---- The journal ----

/** One call of the C interface. */
struct VOD_HOST_EXPORT Call {
  Function function;
  /** The subscriber's number: for `create` the new one; 0 where there is none, or when the handle is not a live one. */
  int subscriber = 0;
  /** Of `create` and `set_channel_configuration`. */
  std::optional<int> channel;
  /** Of the two functions that take a flag. */
  std::optional<bool> flag;
  /** The bytes given to `set_channel_configuration`. */
  std::string bytes;
  /** The user data given to `create`. */
  void* userData = nullptr;
  /** What the call returned; none while it runs. */
  std::optional<int> result;

  /**
   * The call with its arguments on one line: `create(channel=0)`, `subscribe(#1)`, `set_receive_empty_hits(#1, true)`,
   * `set_channel_configuration(channel=0, roi=[0.1, 0.2, 0.3, 0.4])`, `get_information(#2)`, `get_version()`. A
   * configuration without a region prints as its bytes in hexadecimal; a handle that is not a live one as `#gone`, a
   * null one as `null`.
   */
  std::string text() const;
  /** Set by the platform: how `text` names the handle. */
  std::string handle;
};
VOD_HOST_EXPORT std::ostream& operator<<(std::ostream& out, const Call& call);

/** The texts of all calls since the journal was cleared, in the order in which they began. */
VOD_HOST_EXPORT std::vector<std::string> journal();
/** The same calls with all that is known of them. */
VOD_HOST_EXPORT std::vector<Call> calls();
VOD_HOST_EXPORT void clearJournal();
/** Whether calls are recorded: not in a process that never called `reset`. Frames never are. */
VOD_HOST_EXPORT void recordCalls(bool enabled);
/** Waits until the predicate is true of the calls; it is asked at once and whenever a call begins or returns. */
VOD_HOST_EXPORT void waitForCalls(const std::function<bool(const std::vector<Call>&)>& predicate);
/** Waits until so many calls of the function have returned since the journal was cleared. */
VOD_HOST_EXPORT void waitForReturned(Function function, int count);

// ---- Subscribers ----

/** How many subscribers exist, subscribed or not: 0 at the end of a test that leaks none. */
VOD_HOST_EXPORT int liveSubscribers();
/** How many calls were made with a handle that is not a live one, since reset. */
VOD_HOST_EXPORT int callsWithBadHandles();

/** What a subscriber registered. Stays known after the subscriber has been deleted, until `reset`. */
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
 * @throw std::out_of_range  when there was no such subscriber while calls were recorded
 */
VOD_HOST_EXPORT Registration registration(int subscriber);

}  // namespace vod::host

#endif
