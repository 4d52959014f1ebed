// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#ifndef VOD_HOST_CALLS_CALL_JOURNAL_H
#define VOD_HOST_CALLS_CALL_JOURNAL_H

#include "lock.h"

#include <vod_host.h>

#include <condition_variable>
#include <cstdint>
#include <functional>
#include <vector>

namespace vod::host {

/** All calls in the order in which they began. Thread-safe. */
class CallJournal {
 public:
  /** Records a call that begins and returns its number for `end`. */
  std::uint64_t begin(const Call& call);
  /** Replaces the entry with the completed call, unless the journal was cleared in between. */
  void end(std::uint64_t number, Call&& call) noexcept;

  void record(bool enabled);
  bool isRecording() const;
  void clear();
  std::vector<Call> calls() const;
  /** @throw std::runtime_error  when it does not become true within `waitTimeout` */
  void waitFor(const std::function<bool(const std::vector<Call>&)>& predicate);

 private:
  mutable Mutex mutex_;
  std::condition_variable changed_;
  bool recording_ TARNVOD_GUARDED_BY(mutex_) = false;
  std::vector<Call> calls_ TARNVOD_GUARDED_BY(mutex_);
  std::uint64_t firstNumber_ TARNVOD_GUARDED_BY(mutex_) = 1;
  std::uint64_t changes_ TARNVOD_GUARDED_BY(mutex_) = 0;
};

/** The texts of the calls, one per line, for error messages. */
std::string lines(const std::vector<Call>& calls);

}  // namespace vod::host

#endif
