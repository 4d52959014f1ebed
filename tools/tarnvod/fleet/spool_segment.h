// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#ifndef TARNVOD_COMMAND_SPOOL_SEGMENT_H
#define TARNVOD_COMMAND_SPOOL_SEGMENT_H

#include <recording/scene_index.h>

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>

namespace tarn::command {

/** Reads entries of one segment in any order, also while more are written to it. Not thread-safe. */
class SpoolSegment {
 public:
  SpoolSegment(const std::filesystem::path& folder, std::uint64_t number);
  ~SpoolSegment();
  SpoolSegment(const SpoolSegment&) = delete;
  SpoolSegment& operator=(const SpoolSegment&) = delete;

  std::uint64_t number() const { return number_; }
  /** How many entries were complete when the segment was opened. */
  std::uint64_t size() const { return index_.size(); }

  /** The bytes of an entry; none if they are damaged or absent. */
  std::optional<std::string> read(std::uint64_t entry);

 private:
  const std::uint64_t number_;
  vod::recording::SceneIndex index_;
  int scenes_ = -1;
};

}  // namespace tarn::command

#endif
