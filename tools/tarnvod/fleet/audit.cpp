// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "fleet/audit.h"

#include <algorithm>
#include <tuple>

namespace tarn::command {
namespace {

/** One start of a camera. */
struct Source {
  std::int64_t row = 0;
  std::string start;
  std::uint64_t numbered = 0;  ///< as the device has reported
  bool isRunning = false;      ///< the device's latest start, which has not ended
  bool isFirst = false;        ///< the camera's first start in this database
};

/** Goes through the numbers of one start, in order, and books each of them. */
class SourceAccount {
 public:
  SourceAccount(CameraAccount& account, const Source& source, const Database& database)
      : account_(account), source_(source), database_(database) {}

  void add(const AuditOptions& options) {
    readDropped();
    // One row for each stretch of frames without a gap, with the arrival of its last frame.
    Statement stretches(database_,
                        "SELECT first, last, late, (SELECT arrival FROM frames WHERE source = ?2 AND sequence = last)"
                        " FROM (SELECT min(sequence) AS first, max(sequence) AS last, sum(isLate) AS late FROM"
                        " (SELECT sequence, sequence - row_number() OVER (ORDER BY sequence) AS stretch,"
                        " CASE WHEN stored - arrival > ?1 AND clockSet <> 0 THEN 1 ELSE 0 END AS isLate"
                        " FROM frames WHERE source = ?2) AS numbered GROUP BY stretch) AS stretches ORDER BY first");
    stretches.start(options.late, source_.row);
    bool skips = options.fromFirstStored && source_.isFirst;
    while (stretches.next()) {
      const auto first = static_cast<std::uint64_t>(stretches.number(0));
      const auto last = static_cast<std::uint64_t>(stretches.number(1));
      next_ = skips ? first : next_;
      skips = false;
      addGap(first);
      account_.stored += last + 1 - first;
      account_.numbered += last + 1 - first;
      account_.late += static_cast<std::uint64_t>(stretches.number(2));
      latestArrival_ = stretches.number(3);
      next_ = last + 1;
    }
    addEnd();
  }

 private:
  void readDropped() {
    Statement dropped(database_, "SELECT first, last FROM dropped WHERE source = ?1 ORDER BY first");
    for (dropped.start(source_.row); dropped.next();) {
      dropped_.push_back({account_.camera, source_.start, static_cast<std::uint64_t>(dropped.number(0)),
                          static_cast<std::uint64_t>(dropped.number(1))});
    }
  }

  /** Books the numbers from the next one to before this one: dropped where a note says so, missing otherwise. */
  void addGap(std::uint64_t end) {
    account_.numbered += end - std::min(end, next_);
    while (next_ < end) {
      while (note_ < dropped_.size() && dropped_[note_].last < next_) {
        ++note_;
      }
      const bool isNoted = note_ < dropped_.size() && dropped_[note_].first <= next_;
      const std::uint64_t until = isNoted                   ? std::min(end, dropped_[note_].last + 1)
                                  : note_ < dropped_.size() ? std::min(end, dropped_[note_].first)
                                                            : end;
      isNoted ? static_cast<void>(account_.dropped += until - next_) : addMissing(until);
      next_ = until;
    }
  }

  void addMissing(std::uint64_t until) {
    account_.missing += until - next_;
    if (!account_.missingSince) {
      account_.missingSince = latestArrival_;
    }
    if (account_.missingFrames.size() < CameraAccount::mostRanges) {
      account_.missingFrames.push_back({account_.camera, source_.start, next_, until - 1});
    }
  }

  /** Behind the last frame: the device has reported a higher number, or notes go further. */
  void addEnd() {
    const auto last = std::max_element(dropped_.begin(), dropped_.end(),
                                       [](const auto& left, const auto& right) { return left.last < right.last; });
    if (last != dropped_.end()) {
      addGap(last->last + 1);
    }
    if (source_.isRunning && source_.numbered >= next_) {
      const std::uint64_t waiting = source_.numbered + 1 - next_;
      account_.waiting += waiting;
      account_.numbered += waiting;
    } else {
      addGap(source_.numbered + 1);
    }
  }

  CameraAccount& account_;
  const Source& source_;
  const Database& database_;
  std::vector<FrameRange> dropped_;
  std::size_t note_ = 0;
  std::uint64_t next_ = 1;
  std::optional<std::int64_t> latestArrival_;
};

bool isOf(const CameraAccount& account, const Statement& row) {
  return std::tuple(account.site, account.device, static_cast<std::int64_t>(account.camera)) ==
         std::tuple(row.text(1), row.text(2), row.number(3));
}

}  // namespace

std::vector<CameraAccount> audit(const Database& database, const AuditOptions& options) {
  std::vector<CameraAccount> accounts;
  Statement sources(
      database,
      "SELECT source, site, device, camera, start, numbered, repeated, conflicting,"
      " CASE WHEN EXISTS (SELECT 1 FROM (SELECT start, state FROM publishers AS p WHERE p.site = s.site AND"
      " p.device = s.device ORDER BY publication DESC LIMIT 1) AS latest"
      " WHERE latest.start = s.start AND latest.state <> 'stopped') THEN 1 ELSE 0 END"
      " FROM sources AS s ORDER BY site, device, camera, source");
  for (sources.start(); sources.next();) {
    const bool isFirst = accounts.empty() || !isOf(accounts.back(), sources);
    if (isFirst) {
      CameraAccount account;
      account.site = sources.text(1);
      account.device = sources.text(2);
      account.camera = static_cast<int>(sources.number(3));
      accounts.push_back(account);
    }
    CameraAccount& account = accounts.back();
    ++account.starts;
    account.repeated += static_cast<std::uint64_t>(sources.number(6));
    account.conflicting += static_cast<std::uint64_t>(sources.number(7));
    const Source source{sources.number(0), sources.text(4), static_cast<std::uint64_t>(sources.number(5)),
                        sources.number(8) != 0, isFirst};
    SourceAccount(account, source, database).add(options);
  }
  return accounts;
}

}  // namespace tarn::command
