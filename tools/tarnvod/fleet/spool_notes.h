// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#ifndef TARNVOD_COMMAND_SPOOL_NOTES_H
#define TARNVOD_COMMAND_SPOOL_NOTES_H

#include "fleet/frame_range.h"
#include "fleet/number_set.h"

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <utility>

namespace tarn::command {

/**
 * Which frames a spool has dropped for want of room and not yet reported, in memory and in a file. Frames that follow each
 * other are one note, however many are dropped. Like an entry of the spool, a note is given out and stays until it is
 * settled. Not thread-safe.
 */
class SpoolNotes {
 public:
  struct Given {
    std::uint64_t number = 0;  ///< for `settle`
    FrameRange frames;
  };

  /** Goes on with what the file holds; lines that are not notes are ignored. */
  explicit SpoolNotes(std::filesystem::path file);

  /** Adds a note; joins it with those that it overlaps or is adjacent to, unless they are given out. */
  void add(const FrameRange& frames);

  /** The next note; none when all have been given out. */
  std::optional<Given> next();

  /** A note need not be kept any more. Returns false if it is not given out. */
  bool settle(std::uint64_t number);

  /** Has all notes given out again. */
  void rewind();

  /** How many notes are not settled. */
  std::size_t size() const;

  /** Writes the file if anything has changed since it was last written. @throw Failure that names it */
  void save();

 private:
  std::string text() const;

  const std::filesystem::path file_;
  std::map<std::pair<int, std::string>, NumberSet> waiting_;  ///< by camera and start
  std::map<std::uint64_t, FrameRange> given_;
  std::uint64_t latest_ = 0;  ///< number of the note that was given out last
  bool isSaved_ = true;
};

}  // namespace tarn::command

#endif
