// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#ifndef VOD_HOST_SERVICE_SERVICE_H
#define VOD_HOST_SERVICE_SERVICE_H

#include "calls/call_journal.h"
#include "calls/fault_plan.h"
#include "lock.h"
#include "service/service_state.h"

#include <vod_host.h>

#include <atomic>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace vod::host {

/** The results of the C functions. */
namespace status {
constexpr int ok = 0;
constexpr int serviceDown = -1;
constexpr int noSuchChannel = -2;
constexpr int badHandle = -3;
constexpr int badArgument = -4;
constexpr int badRecording = -5;
constexpr int alreadySubscribed = -6;
constexpr int outOfMemory = -7;
}  // namespace status

/** Functions of a test that run before and after every call of the C interface. */
struct CallObserver {
  std::atomic<void (*)()> entering{nullptr};
  std::atomic<void (*)()> leaving{nullptr};
};

/**
 * The service of this process. All functions are thread-safe; none holds a lock while a callback runs.
 *
 * Locks are taken in this order: the service's, then that of a subscriber, a thread or the journal.
 */
class Service {
 public:
  /** Never destroyed: its threads may still run while the process ends. */
  static Service& instance();

  FaultPlan faults;
  CallJournal journal;
  CallObserver observer;

  // ---- For the C interface ----

  int create(Handle* handle, void* userData, int channel, int& number);
  int release(Handle* handle);
  int subscribe(const std::shared_ptr<Subscriber>& subscriber);
  int unsubscribe(const std::shared_ptr<Subscriber>& subscriber);
  int setChannelConfiguration(int channel, const std::string& configuration, std::string& error);
  int information(const Subscriber& subscriber, std::optional<std::string>& bytes, std::size_t& length,
                  std::string& error);
  int channelCounts(ServiceState::Counts& counts);
  /** Returns null, and counts the call, when the handle is invalid. */
  std::shared_ptr<Subscriber> find(Handle handle);
  /** Returns the handle as the journal prints it; sets `number` to that of the subscriber, if there is one. */
  std::string describe(Handle handle, int& number);

  // ---- For the control interface ----

  void reset();
  void makeChannel(int channel);
  void requireChannel(int channel);
  /** What is wrong with the environment variables, if they choose the channels. */
  std::optional<std::string> configurationError();
  void changeChannel(int channel, const std::function<void(ChannelState&)>& change);
  /** Reads or changes a setting. */
  void access(const std::function<void(ServiceState&)>& access);
  void feedFromRecording(int number, std::string folder, Replay replay);

  void push(int number, std::string bytes, Frame frame);
  void deliverHere(int number, const Frame& frame);
  void dropSubscriptions(int number);
  void takeDown();
  void bringUp();

  void drain();
  void waitForEndOfRecording(int number);
  bool isAtEndOfRecording(int number);

  // ---- For the execution of schedules ----

  /** The number of scenes and teardowns of the channel that wait for their delivery. */
  std::size_t waitingTasks(int channel);
  /** Fails every call that needs a channel, as an invalid environment variable does; reports why. */
  void refuseConfiguration(const std::string& error);

 private:
  void configure(const Lock& lock) TARNVOD_REQUIRES(mutex_);
  ChannelState* findChannel(const Lock& lock, int channel) TARNVOD_REQUIRES(mutex_);
  ChannelState& channelAt(const Lock& lock, int channel) TARNVOD_REQUIRES(mutex_);
  int join(const std::shared_ptr<Subscriber>& subscriber, int subscription);
  void leave(const Lock& lock, const Subscriber& subscriber) TARNVOD_REQUIRES(mutex_);
  void waitForCallbacks(Subscriber& subscriber, Function function);

  int startReplay(const Lock& lock, int number, ChannelState& channel) TARNVOD_REQUIRES(mutex_);
  static void stopReplay(const Lock& lock, ChannelState& channel);
  void deliverReplayed(int number, int replay, const std::string& scene);
  void drop(const Lock& lock, ChannelState& channel) TARNVOD_REQUIRES(mutex_);
  DeliveryThread& threadOf(const Lock& lock, ChannelState& channel) TARNVOD_REQUIRES(mutex_);

  Mutex mutex_;
  ServiceState state_ TARNVOD_GUARDED_BY(mutex_);
  std::uintptr_t lastHandle_ TARNVOD_GUARDED_BY(mutex_) = 0;
  int lastReplay_ TARNVOD_GUARDED_BY(mutex_) = 0;
};

}  // namespace vod::host

#endif
