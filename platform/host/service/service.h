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
  /** Feeds the channels from 0 on; they are created if they do not exist. */
  void feedFromSession(std::vector<std::string> folders, Replay replay);

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
  std::size_t waitingTasks(int number);
  /** Fails every call that needs a channel, as an invalid environment variable does; reports why. */
  void refuseConfiguration(const std::string& error);

 private:
  void configure(const Lock& lock) TARNVOD_REQUIRES(mutex_);
  ChannelState* findChannel(const Lock& lock, int channel) TARNVOD_REQUIRES(mutex_);
  ChannelState& channelAt(const Lock& lock, int channel) TARNVOD_REQUIRES(mutex_);
  int join(const std::shared_ptr<Subscriber>& subscriber, int subscription);
  void leave(const Lock& lock, const Subscriber& subscriber) TARNVOD_REQUIRES(mutex_);
  void waitForCallbacks(Subscriber& subscriber, Function function);

  /** Creates the channels that do not exist. The streams that they had end unless they feed another channel. */
  void feed(const Lock& lock, int firstChannel, std::vector<std::string> folders, Replay replay)
      TARNVOD_REQUIRES(mutex_);
  /** One that feeds no channel any more, or a new one. */
  std::shared_ptr<Stream> unusedStream(const Lock& lock) TARNVOD_REQUIRES(mutex_);
  int startReplay(const Lock& lock, ChannelState& channel) TARNVOD_REQUIRES(mutex_);
  /** Ends the replay of a stream unless one of its channels has subscriptions. */
  void stopUnusedReplay(const Lock& lock, const std::shared_ptr<Stream>& stream) TARNVOD_REQUIRES(mutex_);
  void deliverReplayed(const Stream* id, int replay, const Playback::Item& item);
  /** Waits for the callbacks of a session's scenes. */
  void finishReplay(const Stream* id);
  /** Null when the stream is gone since a reset. */
  Stream* findStream(const Lock& lock, const Stream* stream) TARNVOD_REQUIRES(mutex_);
  /** Null when the channel has not played a recording. */
  std::shared_ptr<Replayer> replayerOf(int number);
  void drop(const Lock& lock, ChannelState& channel) TARNVOD_REQUIRES(mutex_);
  std::shared_ptr<DeliveryThread> threadOf(const Lock& lock, ChannelState& channel) TARNVOD_REQUIRES(mutex_);

  Mutex mutex_;
  ServiceState state_ TARNVOD_GUARDED_BY(mutex_);
  std::uintptr_t lastHandle_ TARNVOD_GUARDED_BY(mutex_) = 0;
  int lastReplay_ TARNVOD_GUARDED_BY(mutex_) = 0;
};

}  // namespace vod::host

#endif
