// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#ifndef TARNVOD_COMMAND_SENDER_H
#define TARNVOD_COMMAND_SENDER_H

#include "base/changed_message.h"
#include "base/clock.h"
#include "base/lock.h"
#include "fleet/broker.h"
#include "fleet/sender_figures.h"
#include "fleet/spool.h"
#include "fleet/wake_up.h"
#include "records/envelope.h"

#include <atomic>
#include <condition_variable>
#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <thread>
#include <tuple>

namespace tarn::command {

/**
 * Sends what is in a spool to a broker, on a thread of its own, for as long as this object exists: connects again after
 * each loss, a second later, and sends again what was not settled. An entry is settled when the broker has taken it
 * over or, with `keepUntilStored`, when a collector reports that it is stored. The functions are thread-safe.
 */
class Sender {
 public:
  Sender(Spool& spool, const Origin& origin, const BrokerOptions& broker, bool keepUntilStored);
  /** Ends at once, unless `finish` was called. */
  ~Sender();
  Sender(const Sender&) = delete;
  Sender& operator=(const Sender&) = delete;

  /** Sends the status now, and again after each connection. */
  void setStatus(std::string text);

  /** There is more in the spool. */
  void wake() const { wakeUp_.signal(); }

  /**
   * Sends what can be sent within a few seconds and then the last status, and ends the connection in order.
   *
   * @param makeStatus  called on the sender's thread, before this function returns
   */
  void finish(std::function<std::string()> makeStatus);

  SenderFigures figures() const { return {isConnected_, connections_, sent_, settled_}; }

 private:
  /** What a collector's report names. */
  using Key = std::tuple<SpoolEntry::Kind, int, std::string, std::uint64_t>;

  /** An entry that was sent and is not settled. */
  struct Underway {
    SpoolPosition position;
    bool isRepeated = false;
    std::optional<Clock::time_point> takenAt;  ///< when the broker confirmed it; none before that
  };

  void run();
  void serve();
  void sendStatus(Broker& broker);
  void startOver();
  void sendEntries(Broker& broker);
  void send(Broker& broker, const Spool::Given& given);
  void settle(const SpoolPosition& position);
  bool isReportOverdue() const;
  void sendOverdueAgain();
  void onTaken(int message);
  void onMessage(const BrokerMessage& message);
  void adaptPatience(const Underway& entry);
  void settleStored(SpoolEntry::Kind kind, const FrameRange& frames);
  bool isOverdue();
  bool isDone();
  void endInOrder(Broker& broker);
  void waitBeforeRetry();

  Spool& spool_;
  const Origin origin_;
  const BrokerOptions options_;
  const bool keepUntilStored_;
  const WakeUp wakeUp_;
  std::atomic<bool> isConnected_{false};
  std::atomic<std::uint64_t> connections_{0};
  std::atomic<std::uint64_t> sent_{0};
  std::atomic<std::uint64_t> settled_{0};

  Mutex mutex_;
  std::condition_variable ending_;
  std::string status_ TARNVOD_GUARDED_BY(mutex_);
  std::function<std::string()> makeLastStatus_ TARNVOD_GUARDED_BY(mutex_);
  bool statusIsNew_ TARNVOD_GUARDED_BY(mutex_) = false;
  Clock::time_point deadline_ TARNVOD_GUARDED_BY(mutex_);  ///< when an orderly end gives up
  std::atomic<bool> isEnding_{false};

  // Of the thread.
  std::map<Key, Underway> underway_;
  std::map<int, Key> untaken_;   ///< those that the broker has not confirmed, by number of the message
  SpoolPosition furthest_;       ///< that was ever sent
  Clock::duration patience_{0};  ///< how long to wait for a collector's report before entries are sent again
  bool lastStatusIsTaken_ = false;
  int lastStatus_ = 0;
  ChangedMessage message_;

  std::thread thread_;  // last, so that it starts when all else is there
};

}  // namespace tarn::command

#endif
