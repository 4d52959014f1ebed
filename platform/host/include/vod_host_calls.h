// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

/**
 * @file
 * The part of the host platform's control interface that concerns single calls of the C functions: planned faults, and
 * the journal of calls. `<vod_host.h>` includes it.
 */

#ifndef VOD_HOST_CALLS_H
#define VOD_HOST_CALLS_H

#include <array>
#include <chrono>
#include <functional>
#include <iosfwd>
#include <memory>
#include <optional>
#include <string>
#include <vector>

/** Marks what the host platform exports in addition to the C interface. */
#define VOD_HOST_EXPORT __attribute__((visibility("default")))

namespace vod::host {

/** How long a function of the control interface waits before it throws. */
inline constexpr std::chrono::seconds waitTimeout{30};

// ---- The C functions, by name ----

/**
 * Every function of the C interface: its enumerator and its C name. This is the only list of them; the enumeration, the
 * names in the journal and the check that the host platform defines each function are generated from it.
 */
#define VOD_HOST_FUNCTIONS(X)                                                                        \
  X(Create, video_object_detection_subscriber_create)                                                \
  X(Delete, video_object_detection_subscriber_delete)                                                \
  X(Subscribe, video_object_detection_subscriber_subscribe)                                          \
  X(Unsubscribe, video_object_detection_subscriber_unsubscribe)                                      \
  X(SetGetDetectionCallback, video_object_detection_subscriber_set_get_detection_callback)           \
  X(SetTeardownCallback, video_object_detection_subscriber_set_teardown_callback)                    \
  X(SetReceiveEmptyHits, video_object_detection_subscriber_set_receive_empty_hits)                   \
  X(UseChannelConfiguration, video_object_detection_subscriber_use_channel_configuration)            \
  X(SetChannelConfiguration, video_object_detection_set_channel_configuration)                       \
  X(GetInformation, video_object_detection_subscriber_get_information)                               \
  X(GetNbrChannels, video_object_detection_subscriber_get_nbr_channels)                              \
  X(GetNbrChannelsSimultaneously, video_object_detection_subscriber_get_nbr_channels_simultaneously) \
  X(GetVersion, video_object_detection_subscriber_get_version)                                       \
  X(ServiceIsEnabled, video_object_detection_subscriber_service_is_enabled)

#define VOD_HOST_ENUMERATOR(enumerator, function) enumerator,
/** One enumerator for each function of the C interface: `Function::SetReceiveEmptyHits`. */
enum class Function { VOD_HOST_FUNCTIONS(VOD_HOST_ENUMERATOR) };
#undef VOD_HOST_ENUMERATOR

#define VOD_HOST_ENUMERATOR(enumerator, function) Function::enumerator,
/** All of them, in the order of the enumeration. */
inline constexpr std::array everyFunction = {VOD_HOST_FUNCTIONS(VOD_HOST_ENUMERATOR)};
#undef VOD_HOST_ENUMERATOR

/** The C name without its prefix: `set_receive_empty_hits`. */
VOD_HOST_EXPORT const char* name(Function function);
VOD_HOST_EXPORT std::ostream& operator<<(std::ostream& out, Function function);

// ---- Faults ----

/** A point at which calls wait until the test lets them continue. Copies refer to the same gate. `reset` opens it too.
 */
class VOD_HOST_EXPORT Gate {
 public:
  Gate();
  /** Waits until a call has reached the gate. */
  void waitUntilReached() const;
  /** Lets the calls at the gate continue, and all later ones. */
  void open() const;
  /** Waits at the gate until it is open. Faults do this; a test's own callback may do so too. */
  void pass() const;
  /** Opens every existing gate. */
  static void openAll();

 private:
  struct State;
  struct List;
  explicit Gate(std::shared_ptr<State> state);

  std::shared_ptr<State> state_;
};

/**
 * Which calls of a function are affected, and how. Calls are counted from 1, starting when the fault is planned; by
 * default the first one is affected. The effects take place before the call does its work, in this order: action, gate,
 * delay, service up, failure.
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
  /** Brings the service up while the call runs. Combined with a failure, this call still fails. */
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

/**
 * Plans a fault and returns its number for `lift`. If several affect the same call, all take effect, and the first code
 * is returned.
 */
VOD_HOST_EXPORT int plan(const Fault& fault);
/** Removes a fault from the plan. Calls that already wait at its gate wait until the gate opens. */
VOD_HOST_EXPORT void lift(int fault);
VOD_HOST_EXPORT void liftAllFaults();

// ---- The journal ----

/** One call of the C interface. */
struct VOD_HOST_EXPORT Call {
  Function function;
  /** The subscriber's number, for `create` the new one; 0 if there is none or the handle is invalid. */
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
   * configuration without a region prints as its bytes in hexadecimal; an invalid handle as `#gone`, a null one as
   * `null`.
   */
  std::string text() const;
  /** Set by the platform: the handle as `text` prints it. */
  std::string handle;
};
VOD_HOST_EXPORT std::ostream& operator<<(std::ostream& out, const Call& call);

/** The texts of all calls since the journal was cleared, in the order in which they began. */
VOD_HOST_EXPORT std::vector<std::string> journal();
/** The same calls with all their details. */
VOD_HOST_EXPORT std::vector<Call> calls();
VOD_HOST_EXPORT void clearJournal();
/** Switches the recording of calls on or off; it is off until the first `reset`. Frames are never recorded. */
VOD_HOST_EXPORT void recordCalls(bool enabled);
/** Waits until the predicate is true for the calls; it is evaluated at once and whenever a call begins or returns. */
VOD_HOST_EXPORT void waitForCalls(const std::function<bool(const std::vector<Call>&)>& predicate);
/** Waits until `count` calls of the function have returned since the journal was cleared. */
VOD_HOST_EXPORT void waitForReturned(Function function, int count);

}  // namespace vod::host

#endif
