// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#ifndef TARNVOD_COMMAND_COLLECTOR_FIGURES_H
#define TARNVOD_COMMAND_COLLECTOR_FIGURES_H

#include "base/lock.h"
#include "metrics/delay_histogram.h"

#include <cstdint>
#include <map>
#include <string>
#include <vector>

namespace tarn::command {

/** What a collector has done with messages. */
struct CollectorFigures {
  std::uint64_t stored = 0;
  std::uint64_t repeated = 0;
  std::uint64_t conflicting = 0;
  std::map<std::string, std::uint64_t> refused;  ///< messages by reason, of which there are few
  std::vector<std::int64_t> arrivals;            ///< of stored frames whose clock was set, in microseconds

  std::uint64_t allRefused() const;
};

/** The figures of all batches that are committed. Its functions are thread-safe. */
class CollectorMetrics {
 public:
  /** @param now  when the batch was committed, in microseconds by the wall clock */
  void addCommitted(const CollectorFigures& batch, std::int64_t now);
  void setConnected(bool isConnected);

  /** "5 frames stored, 0 repeated, 0 conflicting; 0 messages refused". */
  std::string summary() const;
  /** What Prometheus reads. */
  std::string text() const;

 private:
  mutable Mutex mutex_;
  CollectorFigures figures_ TARNVOD_GUARDED_BY(mutex_);
  DelayHistogram delays_ TARNVOD_GUARDED_BY(mutex_);
  std::uint64_t commits_ TARNVOD_GUARDED_BY(mutex_) = 0;
  std::int64_t latestCommit_ TARNVOD_GUARDED_BY(mutex_) = 0;
  bool isConnected_ TARNVOD_GUARDED_BY(mutex_) = false;
};

}  // namespace tarn::command

#endif
