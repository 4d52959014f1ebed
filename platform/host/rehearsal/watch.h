// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#ifndef VOD_HOST_REHEARSAL_WATCH_H
#define VOD_HOST_REHEARSAL_WATCH_H

#include "lock.h"
#include "schedule/observation.h"

#include <vod_host.h>

#include <atomic>
#include <chrono>
#include <map>
#include <optional>
#include <set>
#include <string>

namespace vod::host {

/**
 * What is observed of the application while a schedule is executed, written line by line to a journal. Costs one atomic
 * read where no journal is written. Thread-safe.
 */
class Watch {
 public:
  using Clock = std::chrono::steady_clock;
  using Fields = std::map<std::string, std::string>;

  /** Never destroyed: threads may still run while the process ends. */
  static Watch& instance();

  /**
   * From now on everything is written to this file, or pipe that somebody reads.
   *
   * @throw std::runtime_error  when it cannot be opened
   */
  void writeTo(const std::string& path);
  bool isOn() const { return descriptor_ >= 0; }

  void write(const std::string& event, Fields fields = {});

  /** A call of the C interface has returned. */
  void returned(const Call& call);
  /** The application received a detection of the class. */
  void received(int camera, const std::string& className);
  /** What the application received before counts no longer: each class is written once more when it is received. */
  void forgetReceived();
  /** Writes what the process holds, and what has been counted since the last mark. */
  void mark(int round);

  /** A callback that runs for as long as this exists. */
  class Callback {
   public:
    explicit Callback(int channel);
    ~Callback();
    Callback(const Callback&) = delete;
    Callback& operator=(const Callback&) = delete;

   private:
    std::optional<std::uint64_t> number_;
  };

 private:
  struct RunningCallback {
    int camera;
    Clock::time_point begin;
  };

  void count(Clock::time_point now) TARNVOD_REQUIRES(mutex_);
  void writeBlocked(const RunningCallback& callback, bool hasReturned);

  std::atomic<int> descriptor_{-1};
  Clock::time_point begin_;

  Mutex mutex_;
  std::map<int, int> channels_ TARNVOD_GUARDED_BY(mutex_);  ///< of the subscribers that exist
  std::map<int, std::set<std::string>> received_ TARNVOD_GUARDED_BY(mutex_);
  std::map<std::uint64_t, RunningCallback> running_ TARNVOD_GUARDED_BY(mutex_);
  std::uint64_t lastCallback_ TARNVOD_GUARDED_BY(mutex_) = 0;
  Clock::time_point second_ TARNVOD_GUARDED_BY(mutex_);
  int callsInSecond_ TARNVOD_GUARDED_BY(mutex_) = 0;
  int busiestSecond_ TARNVOD_GUARDED_BY(mutex_) = 0;
};

}  // namespace vod::host

#endif
