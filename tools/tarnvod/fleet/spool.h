// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#ifndef TARNVOD_COMMAND_SPOOL_H
#define TARNVOD_COMMAND_SPOOL_H

#include "base/clock.h"
#include "base/lock.h"
#include "fleet/file_lock.h"
#include "fleet/spool_entry.h"
#include "fleet/spool_notes.h"
#include "fleet/spool_segment.h"

#include <recording/recording_writer.h>

#include <cstdint>
#include <deque>
#include <filesystem>
#include <optional>
#include <set>
#include <tuple>

namespace tarn::command {

/** Where an entry is. */
struct SpoolPosition {
  std::uint64_t segment = 0;  ///< 0 for a note of frames that were dropped, which is not in a segment
  std::uint64_t number = 0;   ///< counted from 0; of a note, its own number
};

inline bool operator<(const SpoolPosition& left, const SpoolPosition& right) {
  return std::tie(left.segment, left.number) < std::tie(right.segment, right.number);
}

/**
 * Frames that wait on disk to be sent, in the segments of recordings (`platform/recording`). What `append` has returned
 * from survives the process, however it ends; what the system had written, a power cut as well. The spool is bounded:
 * the oldest segment goes first, and notes say which frames were in it; they are given out before all else.
 *
 * An entry is given out by `next`, in order, and stays until it is settled. All functions are thread-safe.
 */
class Spool {
 public:
  struct Figures {
    std::uint64_t bytes = 0;
    std::uint64_t waiting = 0;  ///< entries and notes that are not settled
    std::uint64_t dropped = 0;  ///< frames that were dropped since this object was made, for want of room
    std::uint64_t damaged = 0;  ///< entries that could not be read back
  };

  struct Given {
    SpoolPosition position;
    SpoolEntry entry;
  };

  /**
   * Goes on behind what the folder holds, of which all that was not settled is given out again.
   *
   * @param limit  of all files, in bytes
   * @throw Failure, RecordingError  when the folder cannot be used or another spool uses it
   */
  Spool(std::filesystem::path folder, std::uint64_t limit);
  ~Spool();
  Spool(const Spool&) = delete;
  Spool& operator=(const Spool&) = delete;

  /** Adds an entry. When the disk is full, the oldest segment makes room. @throw RecordingError when that is not enough */
  void append(const SpoolEntry& entry);

  /** The next entry; none when all have been given out. */
  std::optional<Given> next();

  /** An entry need not be kept any more. */
  void settle(const SpoolPosition& position);

  /** Has everything given out again that is not settled. */
  void rewind();

  Figures figures() const;

 private:
  void findSegments() TARNVOD_REQUIRES(mutex_);
  void readSettled() TARNVOD_REQUIRES(mutex_);
  void write(const SpoolEntry& entry) TARNVOD_REQUIRES(mutex_);
  void beginSegment() TARNVOD_REQUIRES(mutex_);
  void dropOldest() TARNVOD_REQUIRES(mutex_);
  void noteDropped(std::uint64_t number) TARNVOD_REQUIRES(mutex_);
  void saveNotes() TARNVOD_REQUIRES(mutex_);
  std::optional<Given> nextNote() TARNVOD_REQUIRES(mutex_);
  void settleEntry(const SpoolPosition& position) TARNVOD_REQUIRES(mutex_);
  void removeSettledSegments() TARNVOD_REQUIRES(mutex_);
  SpoolPosition lowestUnsettled() const TARNVOD_REQUIRES(mutex_);
  void saveSettled() TARNVOD_REQUIRES(mutex_);
  std::optional<SpoolEntry> read(const SpoolPosition& position) TARNVOD_REQUIRES(mutex_);
  std::uint64_t bytes() const TARNVOD_REQUIRES(mutex_);

  struct Segment {
    std::uint64_t number = 0;
    std::uint64_t bytes = 0;
    std::uint64_t entries = 0;
  };

  const std::filesystem::path folder_;
  const std::uint64_t limit_;
  FileLock lock_;
  mutable Mutex mutex_;
  std::deque<Segment> segments_ TARNVOD_GUARDED_BY(mutex_);
  std::uint64_t latestSegment_ TARNVOD_GUARDED_BY(mutex_) = 0;
  std::optional<vod::recording::RecordingWriter> writer_
      TARNVOD_GUARDED_BY(mutex_);  ///< of the last segment; none before the first entry
  std::optional<SpoolSegment> reader_ TARNVOD_GUARDED_BY(mutex_);
  SpoolPosition next_ TARNVOD_GUARDED_BY(mutex_);
  std::set<SpoolPosition> given_ TARNVOD_GUARDED_BY(mutex_);
  Clock::time_point savedAt_ TARNVOD_GUARDED_BY(mutex_);  ///< when the settled position was last written
  SpoolNotes notes_ TARNVOD_GUARDED_BY(mutex_);
  Figures figures_ TARNVOD_GUARDED_BY(mutex_);  ///< `waiting` without notes, and without `bytes`
};

}  // namespace tarn::command

#endif
