// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "fleet/collector_figures.h"

#include "base/text.h"
#include "metrics/metrics_text.h"

#include <algorithm>
#include <numeric>

namespace tarn::command {

std::uint64_t CollectorFigures::allRefused() const {
  return std::accumulate(refused.begin(), refused.end(), std::uint64_t{0},
                         [](std::uint64_t sum, const auto& each) { return sum + each.second; });
}

void CollectorMetrics::addCommitted(const CollectorFigures& batch, std::int64_t now) {
  const Lock lock(mutex_);
  figures_.stored += batch.stored;
  figures_.repeated += batch.repeated;
  figures_.conflicting += batch.conflicting;
  for (const auto& [reason, count] : batch.refused) {
    figures_.refused[reason] += count;
  }
  for (const std::int64_t arrival : batch.arrivals) {
    delays_.add(static_cast<double>(std::max(now - arrival, std::int64_t{0})) / 1e6);
  }
  ++commits_;
  latestCommit_ = now;
}

void CollectorMetrics::setConnected(bool isConnected) {
  const Lock lock(mutex_);
  isConnected_ = isConnected;
}

std::string CollectorMetrics::summary() const {
  const Lock lock(mutex_);
  return counted(figures_.stored, "frame") + " stored, " + std::to_string(figures_.repeated) + " repeated, " +
         std::to_string(figures_.conflicting) + " conflicting; " + counted(figures_.allRefused(), "message") +
         " refused";
}

std::string CollectorMetrics::text() const {
  const Lock lock(mutex_);
  MetricsText text;
  addBuildInfo(text);
  text.gauge("tarnvod_collect_broker_connected", "Whether the broker is connected.", isConnected_ ? 1 : 0);
  text.counter("tarnvod_collect_frames_stored_total", "Frames that were stored.", figures_.stored);
  text.counter("tarnvod_collect_frames_repeated_total", "Frames that came again and were not stored again.",
               figures_.repeated);
  text.counter("tarnvod_collect_frames_conflicting_total",
               "Other frames with a number that is stored; they were not stored.", figures_.conflicting);
  text.beginCounter("tarnvod_collect_messages_refused_total", "Messages that are not of a fleet, by reason.");
  for (const auto& [reason, count] : figures_.refused) {
    text.add(count, {{"reason", reason}});
  }
  text.counter("tarnvod_collect_commits_total", "Transactions of the database.", commits_);
  text.beginGauge("tarnvod_collect_latest_commit_timestamp_seconds",
                  "When the last transaction was committed, in seconds since 1970; 0 before the first.");
  text.add(static_cast<double>(latestCommit_) / 1e6);
  delays_.write(text, "tarnvod_collect_delay_seconds",
                "From a frame's arrival at the publisher to its commit; only of frames whose clock was set.");
  return text.text();
}

}  // namespace tarn::command
